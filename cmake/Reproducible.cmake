# The same sources give the same bytes whatever folder they are built in: optimised builds name files
# by their place in the project.
add_compile_options("$<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_BINARY_DIR}=build;\
-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>")
