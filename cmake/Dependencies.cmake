# Everything found here is a Debian package of packages.txt.
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Network Sql Svg Concurrent)
find_package(QCoro6 REQUIRED COMPONENTS Core)
find_package(nlohmann_json REQUIRED)
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
foreach(module IN ITEMS libheif libdeflate libexif libwebpdemux lcms2)
    pkg_check_modules(${module} REQUIRED IMPORTED_TARGET ${module})
endforeach()
