# What every target of the project is compiled with: the language, hidden visibility, warnings, and the instruments that
# the options ask for. Warnings are for those who work on the project; as a part of another one it adds none.
function(orvxml_target_options target)
    set_target_properties(${target} PROPERTIES
        CXX_STANDARD 17
        CXX_STANDARD_REQUIRED ON
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    if(PROJECT_IS_TOP_LEVEL OR ORVXML_WERROR)
        target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
    endif()
    if(ORVXML_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(ORVXML_SANITIZE)
        # In instrumented code GCC warns of values that are set, also in the standard library.
        target_compile_options(${target} PRIVATE
            -fsanitize=${ORVXML_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -Wno-maybe-uninitialized)
        target_link_options(${target} PRIVATE -fsanitize=${ORVXML_SANITIZE})
    endif()
    if(ORVXML_COVERAGE)
        target_compile_options(${target} PRIVATE --coverage)
        target_link_options(${target} PRIVATE --coverage)
    endif()
endfunction()
