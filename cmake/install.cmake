# Installs the library with what find_package(velmora) and pkg-config need.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/velmora)

install(
    TARGETS velmora
    EXPORT velmora-targets
    FILE_SET HEADERS
)
install(
    EXPORT velmora-targets
    NAMESPACE velmora::
    DESTINATION ${package_dir}
)
if(TARGET velmora_yaml)
    install(
        TARGETS velmora_yaml
        EXPORT velmora-yaml-targets
        FILE_SET HEADERS
    )
    install(
        TARGETS velmora_app
        EXPORT velmora-app-targets
        FILE_SET HEADERS
    )
    foreach(component yaml app)
        install(
            EXPORT velmora-${component}-targets
            NAMESPACE velmora::
            DESTINATION ${package_dir}
        )
    endforeach()
endif()

configure_package_config_file(
    cmake/velmora-config.cmake.in ${PROJECT_BINARY_DIR}/velmora-config.cmake INSTALL_DESTINATION ${package_dir}
)
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/velmora-config-version.cmake COMPATIBILITY SameMinorVersion
)
install(FILES ${PROJECT_BINARY_DIR}/velmora-config.cmake ${PROJECT_BINARY_DIR}/velmora-config-version.cmake
        DESTINATION ${package_dir}
)

# Where the prefix is, seen from the file itself: an installed tree may be moved.
cmake_path(SET pkgconfig_dir NORMALIZE "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}/${pkgconfig_dir}"
           OUTPUT_VARIABLE prefix_from_pkgconfig
)
configure_file(cmake/velmora.pc.in ${PROJECT_BINARY_DIR}/velmora.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/velmora.pc DESTINATION ${pkgconfig_dir})

if(TARGET velmora_yaml)
    # Whoever links a static library links what it needs.
    if(BUILD_SHARED_LIBS)
        set(yaml_requires_private yaml-cpp)
    else()
        set(yaml_requires ", yaml-cpp")
    endif()
    foreach(component yaml app)
        configure_file(cmake/velmora-${component}.pc.in ${PROJECT_BINARY_DIR}/velmora-${component}.pc @ONLY)
        install(FILES ${PROJECT_BINARY_DIR}/velmora-${component}.pc DESTINATION ${pkgconfig_dir})
    endforeach()
endif()
