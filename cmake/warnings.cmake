# What every target of this project is compiled with: link vak_warnings.
add_library(vak_warnings INTERFACE)
target_compile_options(vak_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    $<$<BOOL:${VAK_WERROR}>:-Werror>)
# g++ 12 sees overlaps in joined strings that are none.
target_compile_options(vak_warnings INTERFACE
    $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
