# Installed: the library, the header, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS vak_sp EXPORT vak_spTargets)
install(FILES include/vak_sp.h TYPE INCLUDE)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vak_sp)
install(EXPORT vak_spTargets NAMESPACE vak_sp:: DESTINATION ${package_dir})
configure_package_config_file(cmake/vak_spConfig.cmake.in vak_spConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(vak_spConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vak_spConfig.cmake ${PROJECT_BINARY_DIR}/vak_spConfigVersion.cmake
    DESTINATION ${package_dir})

list(TRANSFORM HDF5_C_INCLUDE_DIRS PREPEND "-I" OUTPUT_VARIABLE hdf5_cflags)
list(JOIN hdf5_cflags " " hdf5_cflags)
set(hdf5_libs ${HDF5_C_LIBRARIES})
list(FILTER hdf5_libs INCLUDE REGEX "hdf5")
if(HDF5_ROOT)
    list(GET hdf5_libs 0 hdf5_library)
    cmake_path(GET hdf5_library PARENT_PATH hdf5_folder)
    list(APPEND hdf5_libs -Wl,-rpath,${hdf5_folder})
endif()
list(JOIN hdf5_libs " " hdf5_libs)
file(RELATIVE_PATH pc_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/vak_sp.pc.in vak_sp.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vak_sp.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
