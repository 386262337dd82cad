# Compiler settings shared by every target of the project.

function(zk64_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-align
        -Wmissing-declarations -Wdouble-promotion -Wformat=2)
    # Some variadic members take the argument before `...` by reference or
    # as a bool, as their signatures require; GCC and clang both pass such
    # arguments as expected on every target the library builds for.
    # Some classes keep fields that their data model fixes but that no member
    # reads.
    if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        target_compile_options(${target} PRIVATE -Wno-varargs -Wno-unused-private-field)
    endif()
    # GCC 12 at -O3 reports a bogus overlap inside std::string when a
    # literal is joined with a temporary string (GCC bug 105651, fixed in 13).
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
    if(ZK64_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()

# Settings of the library's own code: hidden symbols unless marked ZK_API.
function(zk64_library_settings target)
    zk64_warnings(${target})
    set_target_properties(${target} PROPERTIES
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    # Calls between the library's own exported functions (a container of
    # records constructing its strings, say) bind inside the library instead
    # of going through the symbol table: nobody interposes them.
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
endfunction()

if(ZK64_SANITIZERS)
    add_compile_options(-fsanitize=${ZK64_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${ZK64_SANITIZERS})
endif()

# Every executable and DLL in one folder, so that Wine finds zk64.dll next to
# the test programs.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

# The mingw C++ runtime DLLs that zk64.dll and its callers share (see the
# toolchain file). They are copied beside zk64.dll in the build tree, where
# the tests run under Wine, and installed beside it by cmake --install.
function(zk64_mingw_runtime out)
    set(dlls "")
    foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
            OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
        if(NOT IS_ABSOLUTE "${path}" OR NOT EXISTS "${path}")
            message(FATAL_ERROR "the mingw runtime DLL ${name} was not found by ${CMAKE_CXX_COMPILER}")
        endif()
        file(REAL_PATH "${path}" path)
        list(APPEND dlls "${path}")
    endforeach()
    file(COPY ${dlls} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
    set(${out} ${dlls} PARENT_SCOPE)
endfunction()
