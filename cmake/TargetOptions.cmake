# What every target of the project is compiled with: the language, hidden visibility, warnings, and the sanitizers that
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
    orvxml_sanitize(${target} "${ORVXML_SANITIZE}")
endfunction()

function(orvxml_sanitize target sanitizers)
    if(sanitizers)
        # In instrumented code GCC warns of values that are set, also in the standard library.
        target_compile_options(${target} PRIVATE
            -fsanitize=${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer
            $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
        target_link_options(${target} PUBLIC -fsanitize=${sanitizers})
    endif()
endfunction()

# The instruments that watch the library alone: code of tests would be watched for nothing, and takes long to compile with them.
function(orvxml_watch target)
    orvxml_sanitize(${target} "${ORVXML_SANITIZE_LIBRARY}")
    if(ORVXML_COVERAGE)
        target_compile_options(${target} PRIVATE -O0 --coverage)
        target_link_options(${target} PUBLIC --coverage)
    endif()
endfunction()
