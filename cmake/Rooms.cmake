# The precompiled headers. moltiva_pch_gui is all that rooms below app/ may see, so that a widget class cannot slip in
# without an include; moltiva_pch_widgets adds the widgets. A target uses the one that was compiled like itself.
function(moltiva_precompiled name link header)
    file(WRITE ${CMAKE_BINARY_DIR}/${name}.cpp.new "// Only carries the precompiled header.\n")
    configure_file(${CMAKE_BINARY_DIR}/${name}.cpp.new ${CMAKE_BINARY_DIR}/${name}.cpp COPYONLY)
    add_library(${name} STATIC ${CMAKE_BINARY_DIR}/${name}.cpp)
    set_target_properties(${name} PROPERTIES AUTOMOC OFF)
    target_link_libraries(${name} PUBLIC ${link})
    target_precompile_headers(${name} PRIVATE ${header})
endfunction()
moltiva_precompiled(moltiva_pch_gui Qt6::Gui ${CMAKE_SOURCE_DIR}/cmake/PrecompiledGui.h)
moltiva_precompiled(moltiva_pch_widgets Qt6::Widgets ${CMAKE_SOURCE_DIR}/cmake/PrecompiledWidgets.h)

# Most of the time that a sanitizer build takes goes into optimizing, so only the rooms that compute for long are
# optimized there.
set(doNotOptimize $<$<CONFIG:Sanitized>:-O0>)
target_compile_options(moltiva_pch_widgets PRIVATE ${doNotOptimize})
set(pchOfTheRest moltiva_pch_gui)
if(CMAKE_BUILD_TYPE STREQUAL "Sanitized")
    set(pchOfTheRest moltiva_pch_gui_unoptimized)
    moltiva_precompiled(${pchOfTheRest} Qt6::Gui ${CMAKE_SOURCE_DIR}/cmake/PrecompiledGui.h)
    target_compile_options(${pchOfTheRest} PRIVATE ${doNotOptimize})
endif()

# moltiva_room(NAME [WIDGETS | COMPUTES] SOURCES … LINK …): the library moltiva_NAME of a folder.
function(moltiva_room name)
    cmake_parse_arguments(ROOM "WIDGETS;COMPUTES" "" "SOURCES;LINK" ${ARGN})
    add_library(moltiva_${name} STATIC ${ROOM_SOURCES})
    if(ROOM_COMPUTES)
        moltiva_compile_like(moltiva_${name} moltiva_pch_gui)
    else()
        moltiva_compile(moltiva_${name} "${ROOM_WIDGETS}")
    endif()
    target_link_libraries(moltiva_${name} PUBLIC ${ROOM_LINK})
endfunction()

# How everything but the rooms that compute is compiled.
function(moltiva_compile target widgets)
    if(widgets)
        moltiva_compile_like(${target} moltiva_pch_widgets)
    else()
        moltiva_compile_like(${target} ${pchOfTheRest})
    endif()
    target_compile_options(${target} PRIVATE ${doNotOptimize})
endfunction()

# Includes are written from the top folder ("model/TextLayer.h"), so that the table test can read them.
function(moltiva_compile_like target precompiled)
    target_include_directories(${target} PUBLIC ${CMAKE_SOURCE_DIR})
    target_precompile_headers(${target} REUSE_FROM ${precompiled})
endfunction()
