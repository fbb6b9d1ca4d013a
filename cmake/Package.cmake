# What is installed and where, and the Debian package of it. scripts/package makes the package.
include(GNUInstallDirs)
set(MOLTIVA_WEBSITE "https://moltiva.example" CACHE STRING
    "Where the product's site stands; the package's description names it, and has its picture from there")
set(MOLTIVA_MAINTAINER "Tallerio <moltiva@moltiva.example>" CACHE STRING "Whom the package names as its maintainer")
# What `cpack` and `cmake --install` need is built by the targets that scripts/package names.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

set(packaging ${CMAKE_SOURCE_DIR}/packaging)
set(packed ${CMAKE_BINARY_DIR}/packaging)
find_program(GZIP_PROGRAM gzip)

# moltiva_compressed(TEMPLATE FOLDER NAME): installs FOLDER/NAME.gz, made of a file in which names between @ stand for
# CMake's variables. The compressed file holds neither name nor time, so that equal texts are equal files.
function(moltiva_compressed template folder name)
    string(MAKE_C_IDENTIFIER ${template} key)
    configure_file(${template} ${packed}/${key} @ONLY)
    add_custom_command(OUTPUT ${packed}/${key}.gz
        COMMAND ${GZIP_PROGRAM} -9nkf ${packed}/${key}
        DEPENDS ${packed}/${key})
    set_property(GLOBAL APPEND PROPERTY MOLTIVA_COMPRESSED ${packed}/${key}.gz)
    install(FILES ${packed}/${key}.gz DESTINATION ${folder} RENAME ${name}.gz)
endfunction()

set(documents ${CMAKE_INSTALL_DATADIR}/doc/moltiva)
install(TARGETS moltiva moltiva-service RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${packaging}/moltiva.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
configure_file(${packaging}/metainfo.xml.in ${packed}/com.tallerio.moltiva.metainfo.xml @ONLY)
install(FILES ${packed}/com.tallerio.moltiva.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
foreach(side IN ITEMS 16 24 32 48 64 128 256 512)
    install(FILES ${packaging}/icons/${side}.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${side}x${side}/apps RENAME moltiva.png)
endforeach()
install(FILES ${packaging}/icons/moltiva.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
foreach(program IN ITEMS moltiva moltiva-service)
    install(FILES ${packaging}/completion/${program}.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${program})
    moltiva_compressed(packaging/man/${program}.1 ${CMAKE_INSTALL_MANDIR}/man1 ${program}.1)
    moltiva_compressed(packaging/man/es/${program}.1 ${CMAKE_INSTALL_MANDIR}/es/man1 ${program}.1)
endforeach()
install(FILES ${packaging}/completion/_moltiva DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
install(FILES ${packaging}/debian/copyright DESTINATION ${documents})
install(FILES README.md DESTINATION ${documents})
install(FILES docs/window.png DESTINATION ${documents}/docs)
moltiva_compressed(CHANGELOG.md ${documents} CHANGELOG.md)
moltiva_compressed(packaging/debian/changelog.in ${documents} changelog)

get_property(compressed GLOBAL PROPERTY MOLTIVA_COMPRESSED)
add_custom_target(package_files ALL DEPENDS ${compressed})

# Libraries are found by dpkg-shlibdeps; what is only opened by name, and fonts and programs, is listed in packages.txt.
file(STRINGS packages.txt used REGEX "^[^#].* run$")
list(TRANSFORM used REPLACE " .*" "")
list(JOIN used ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS packages.txt)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME moltiva)
set(CPACK_PACKAGE_VENDOR Tallerio)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "make social-media posts in batches")
set(CPACK_PACKAGE_DESCRIPTION
"Moltiva lays editable texts over a whole folder of photographs, lets you adjust
all of them at once, and exports finished images or publishes them. The texts
can come from a spreadsheet, from a model on this computer or from the cloud.
The interface speaks Spanish; everything works from the command line too.
.
moltiva-service is the service of accounts and credits that the program starts
where no other one is configured.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${MOLTIVA_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${MOLTIVA_WEBSITE})
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "desktop-file-utils, hicolor-icon-theme, xdg-desktop-portal")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
include(CPack)
