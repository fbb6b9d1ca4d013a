# The two precompiled headers. The first is all that rooms below app/ may see, so that a widget class cannot slip in
# without an include; the second adds the widgets.
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

# moltiva_room(NAME [WIDGETS] SOURCES … LINK …): the library moltiva_NAME of a folder.
function(moltiva_room name)
    cmake_parse_arguments(ROOM "WIDGETS" "" "SOURCES;LINK" ${ARGN})
    add_library(moltiva_${name} STATIC ${ROOM_SOURCES})
    moltiva_compile_like(moltiva_${name} "${ROOM_WIDGETS}")
    target_link_libraries(moltiva_${name} PUBLIC ${ROOM_LINK})
endfunction()

# Includes are written from the top folder ("model/TextLayer.h"), so that the table test can read them.
function(moltiva_compile_like target widgets)
    target_include_directories(${target} PUBLIC ${CMAKE_SOURCE_DIR})
    if(widgets)
        target_precompile_headers(${target} REUSE_FROM moltiva_pch_widgets)
    else()
        target_precompile_headers(${target} REUSE_FROM moltiva_pch_gui)
    endif()
endfunction()
