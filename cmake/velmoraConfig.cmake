# find_package(velmora): targets velmora::time, velmora::orbit, velmora::geometry, velmora::pool, velmora::image.
include(CMakeFindDependencyMacro)
find_dependency(Threads)
include(${CMAKE_CURRENT_LIST_DIR}/velmora_targets.cmake)
