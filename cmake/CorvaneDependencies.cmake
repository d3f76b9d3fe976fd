# Every dependency comes from Debian's packages (see scripts/setup).
# Boost 1.81 rather than the default 1.74: Asio's ranged parallel group and Boost.URL need it.
find_package(Boost 1.81 REQUIRED CONFIG COMPONENTS url)
find_package(fmt REQUIRED CONFIG)
find_package(spdlog REQUIRED CONFIG)
find_package(Threads REQUIRED)
# utf8proc ships a pkg-config file only.
find_package(PkgConfig REQUIRED)
pkg_check_modules(UTF8PROC REQUIRED IMPORTED_TARGET libutf8proc)
# toml++ reads the checker's configuration and the stores' data files (compiled library).
find_package(tomlplusplus 3 REQUIRED CONFIG)
