# What every target of this project is compiled with: link vak_warnings.
add_library(vak_warnings INTERFACE)
target_compile_options(vak_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    $<$<BOOL:${VAK_WERROR}>:-Werror>)
