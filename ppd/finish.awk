# What the compiler for driver information files cannot say about a PPD.
#
# CUPS puts options between JCLOpenUI and JCLCloseUI into one nameless group whatever their group is, and
# takes an option for one of the JCL section only if JCLCloseUI ends it. Opened by OpenUI and closed by
# JCLCloseUI they keep their group and stay out of the document.
#
# Of a translation only the text counts, and neither numbers nor names of models or of IPP have another one
# in another language. Such lines would only make the PPD longer, which every job reads.

/^\*[a-z][a-z]\.(cupsIPPFinishings|Translation (Manufacturer|ModelName|ShortNickName|NickName)\/)/ ||
/^\*[a-z][a-z]\.[A-Za-z0-9]+ [-+0-9]+\/[-+0-9]+: / { next }

/^\*[a-z][a-z]\./ { sub(/: ".*/, ": \"\"") }
/^\*JCLOpenUI / { sub(/JCL/, "") }

{ print }
