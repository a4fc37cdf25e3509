# SPDX-License-Identifier: MIT
# Benchmarks: one program for each file of bench/, all behind the target `benchmarks`, which an ordinary build
# leaves out. Peers are optional; a source asks for one by ZQ_BENCH_HAS_<PEER>.

if(ZQFOUNDATION_BENCHMARKS STREQUAL "AUTO")
    find_package(benchmark QUIET)
    if(NOT benchmark_FOUND)
        message(STATUS "Benchmarks are not built: Google Benchmark is not installed (scripts/install-packages bench)")
        return()
    endif()
else()
    find_package(benchmark REQUIRED)
endif()

add_library(zq_bench_settings INTERFACE)
target_link_libraries(zq_bench_settings INTERFACE
    zq_flags ZQFoundation::ZQFoundation benchmark::benchmark benchmark::benchmark_main)

function(zq_use_peer name target)
    if(TARGET ${target})
        target_compile_definitions(zq_bench_settings INTERFACE ZQ_BENCH_HAS_${name})
        target_link_libraries(zq_bench_settings INTERFACE ${target})
    else()
        message(STATUS "Benchmarks leave out ${name}, which is not installed")
    endif()
endfunction()

find_package(fmt QUIET)
find_package(spdlog QUIET)
find_package(glog QUIET)
find_package(absl QUIET)
find_package(Qt6Core QUIET)
find_package(PkgConfig QUIET)
if(PkgConfig_FOUND AND NOT TARGET PkgConfig::ZQ_GLIB)
    pkg_check_modules(ZQ_GLIB QUIET IMPORTED_TARGET glib-2.0)
endif()
zq_use_peer(FMT fmt::fmt)
zq_use_peer(SPDLOG spdlog::spdlog)
zq_use_peer(GLOG glog::glog)
zq_use_peer(ABSL absl::str_format)
zq_use_peer(GLIB PkgConfig::ZQ_GLIB)
zq_use_peer(QT Qt6::Core)

add_custom_target(benchmarks)
file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/bench/*.cpp")
foreach(source IN LISTS sources)
    cmake_path(GET source STEM name)
    set(program bench_${name})
    add_executable(${program} EXCLUDE_FROM_ALL "${source}")
    target_link_libraries(${program} PRIVATE zq_bench_settings)
    set_target_properties(${program} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bench")
    add_dependencies(benchmarks ${program})
endforeach()
