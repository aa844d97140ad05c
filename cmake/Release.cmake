# What is released is hardened, and the same bit by bit wherever it is built: no path of the build
# machine and no time is in it.
set(CMAKE_AUTORCC_OPTIONS --format-version 1) # later ones keep the times of files
include(CheckPIESupported)
check_pie_supported()
add_compile_options("$<$<CONFIG:Release>:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.>")
add_link_options("$<$<CONFIG:Release>:LINKER:-z,relro,-z,now>")
