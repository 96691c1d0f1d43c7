# What the compiler for driver information files cannot say about a PPD.
#
# CUPS puts options between JCLOpenUI and JCLCloseUI into one nameless group whatever their group is, and
# takes an option for one of the JCL section only if JCLCloseUI ends it. Opened by OpenUI and closed by
# JCLCloseUI they keep their group and stay out of the document.

{
  sub(/^\*JCLOpenUI /, "*OpenUI ")
  print
}
