# Everything found here is a Debian package of packages.txt.
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Network Sql Svg DBus)
find_package(QCoro6 REQUIRED COMPONENTS Core DBus)
find_package(nlohmann_json REQUIRED)
find_package(ICU REQUIRED COMPONENTS uc)
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
foreach(module IN ITEMS libheif libdeflate libwebpdemux lcms2 cpp-httplib libsodium sqlite3 libzip xcb)
    pkg_check_modules(${module} REQUIRED IMPORTED_TARGET ${module})
endforeach()

# Comes without a description of its own.
find_path(LIBCSV_INCLUDE_DIR csv.h REQUIRED)
find_library(LIBCSV_LIBRARY csv REQUIRED)
add_library(libcsv INTERFACE IMPORTED)
target_include_directories(libcsv INTERFACE ${LIBCSV_INCLUDE_DIR})
target_link_libraries(libcsv INTERFACE ${LIBCSV_LIBRARY})
