# `cmake --install` puts the library, its public headers and a CMake package in the prefix, so a
# host finds it with find_package(WidgetCommon) and links WidgetCommon::Widget_Common.
include(CMakePackageConfigHelpers)

set(WIDGET_COMMON_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/WidgetCommon)

set(installed_targets Widget_Common widget_common_services)
if(WIDGET_COMMON_SERVICES STREQUAL "widget_common_reference")
    list(APPEND installed_targets widget_common_reference)
else()
    # The exported Widget_Common names the host's own services target, which the host's
    # package has to provide.
    message(STATUS "Widget_Common is installed against the services '${WIDGET_COMMON_SERVICES}'")
endif()

install(TARGETS ${installed_targets} EXPORT WidgetCommonTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        INCLUDES DESTINATION ${WIDGET_COMMON_INCLUDE_DIR})

# Public headers keep the source layout: "frame/...", "edit/...", and the boundary headers
# reached by their bare names through frame/services.
foreach(folder frame edit analysis dfm toolbar steprepeat)
    if(IS_DIRECTORY ${PROJECT_SOURCE_DIR}/${folder})
        install(DIRECTORY ${PROJECT_SOURCE_DIR}/${folder}/
                DESTINATION ${WIDGET_COMMON_INCLUDE_DIR}/${folder}
                FILES_MATCHING PATTERN "*.h")
    endif()
endforeach()

install(EXPORT WidgetCommonTargets NAMESPACE WidgetCommon:: DESTINATION ${WIDGET_COMMON_CMAKE_DIR})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/WidgetCommonConfig.cmake.in
    ${PROJECT_BINARY_DIR}/WidgetCommonConfig.cmake INSTALL_DESTINATION ${WIDGET_COMMON_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/WidgetCommonConfigVersion.cmake
    VERSION ${PROJECT_VERSION} COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/WidgetCommonConfig.cmake
              ${PROJECT_BINARY_DIR}/WidgetCommonConfigVersion.cmake
        DESTINATION ${WIDGET_COMMON_CMAKE_DIR})
