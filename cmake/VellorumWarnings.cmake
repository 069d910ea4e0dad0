# Warning and sanitizer settings shared by the library, its tests, tools and benchmarks.

if(VELLORUM_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=address,undefined)
endif()

function(vellorum_set_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
    if(VELLORUM_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()
