set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})

# Libraries and programs share precompiled headers, so all are compiled alike; Debian's Qt needs -fPIC.
add_compile_options(-fPIC -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wimplicit-fallthrough -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fpch-preprocess)
    if(CMAKE_UNITY_BUILD)
        # In a unity build GCC takes the including file for the main one, and warns of coroutine frames that hold types
        # of unnamed namespaces.
        add_compile_options(-Wno-subobject-linkage)
    endif()
endif()
add_compile_definitions(
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH
    QT_DISABLE_DEPRECATED_BEFORE=0x060400)

# GCC spends a quarter of its time on what pointers may point to, and on looking for memory to use again.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set(compilesFaster "-fno-tree-pta --param ggc-min-expand=400 --param ggc-min-heapsize=1000000")
endif()
# The sanitizers' own code makes GCC see values that may be uninitialized where none are; the release build keeps that
# warning.
set(CMAKE_CXX_FLAGS_SANITIZED "-O1 -g1 ${compilesFaster} -Wno-maybe-uninitialized -fsanitize=address,undefined -fno-sanitize=vptr -fno-sanitize-recover=undefined -fno-omit-frame-pointer")
set(CMAKE_EXE_LINKER_FLAGS_SANITIZED "-fsanitize=address,undefined")
