# The install tree: programs and the plug-in side by side in bin/ (the hosts look for the
# plug-in next to themselves), the host SDK's libraries in lib/ with its headers under
# include/texture/host/, a CMake package (find_package(TextureHost)), a pkg-config file and
# the texture command's man page, made from its own --help.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(TEXTURE_INSTALL_RPATH "$ORIGIN;$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
set(TEXTURE_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/texture)

foreach(program texture texture-studio Texture)
  if(TARGET ${program})
    set_target_properties(${program} PROPERTIES INSTALL_RPATH "${TEXTURE_INSTALL_RPATH}")
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
                               LIBRARY DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()

# The studio's widgets library goes along for the studio; the package exports the engine SDK.
if(TARGET TextureHostWidgets)
  set_target_properties(TextureHostWidgets PROPERTIES INSTALL_RPATH "$ORIGIN")
  install(TARGETS TextureHostWidgets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
set_target_properties(TextureHost PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS TextureHost EXPORT TextureHostTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${TEXTURE_INCLUDE_DIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/host/ DESTINATION ${TEXTURE_INCLUDE_DIR}/host
        FILES_MATCHING PATTERN "*.h"
        PATTERN "FileEncoding.h" EXCLUDE PATTERN "PngOutput.h" EXCLUDE)  # the image library's types stay private
install(EXPORT TextureHostTargets NAMESPACE Texture::
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/TextureHost)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/TextureHostConfig.cmake.in
  ${CMAKE_BINARY_DIR}/TextureHostConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/TextureHost)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/TextureHostConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/TextureHostConfig.cmake
              ${CMAKE_BINARY_DIR}/TextureHostConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/TextureHost)
configure_file(${PROJECT_SOURCE_DIR}/cmake/texture-host.pc.in
               ${CMAKE_BINARY_DIR}/texture-host.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/texture-host.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(TARGET texture)
  set(man_page ${CMAKE_BINARY_DIR}/texture.1)
  add_custom_command(OUTPUT ${man_page}
    COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:texture> -DOUTPUT=${man_page}
            -DVERSION=${PROJECT_VERSION} -P ${PROJECT_SOURCE_DIR}/cmake/ManPage.cmake
    DEPENDS texture ${PROJECT_SOURCE_DIR}/cmake/ManPage.cmake
    COMMENT "Writing the texture man page from its --help")
  add_custom_target(texture-man-page ALL DEPENDS ${man_page})
  install(FILES ${man_page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()
