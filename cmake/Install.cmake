# What `cmake --install` lays out, so that others build against the library:
# the CMake package kest-slice-dma with the targets kest::mox, kest::slice_dma and kest::driver_sim,
# a pkg-config file, the headers under include/kest-slice-dma, the agent with its systemd unit, its
# client with its completion, and the examples.
include(CMakePackageConfigHelpers)

set(KEST_INCLUDE_DIR include/kest-slice-dma)
set(KEST_LIB_DIR lib)  # the agent looks for the simulated driver in ../lib
set(KEST_PACKAGE_DIR ${KEST_LIB_DIR}/cmake/kest-slice-dma)

set_target_properties(kest_slice_dma PROPERTIES EXPORT_NAME slice_dma)
set_target_properties(kest_driver_sim PROPERTIES EXPORT_NAME driver_sim)
foreach(target mox kest_slice_dma kest_driver_sim)
  target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${KEST_INCLUDE_DIR}>)
  target_compile_features(${target} INTERFACE cxx_std_20)
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
endforeach()
set_target_properties(kest-slice-agent PROPERTIES INSTALL_RPATH "$ORIGIN/../${KEST_LIB_DIR}")

install(TARGETS mox kest_slice_dma kest_driver_sim kest-slice-agent kestctl EXPORT kest-slice-dma
  RUNTIME DESTINATION bin
  LIBRARY DESTINATION ${KEST_LIB_DIR})
# Of the details those that the other headers include; of the simulated driver what steers it.
install(DIRECTORY platform model driver sm registry DESTINATION ${KEST_INCLUDE_DIR}
  FILES_MATCHING PATTERN "*.h" PATTERN detail EXCLUDE PATTERN sim EXCLUDE)
foreach(header
    driver/sim/Export.h
    driver/sim/SimControl.h
    model/detail/Collection.h
    model/detail/Collections.inc
    model/detail/EndProcess.h
    model/detail/FieldTable.h
    model/detail/ObservedEntity.h
    model/detail/ObserverList.h
    model/detail/RecordText.h
    model/detail/SliceCollections.h
    registry/detail/Arguments.h
    registry/detail/EntityAdapter.h
    registry/detail/Held.h
    registry/detail/RecordAdapter.h
    registry/detail/ValueAdapter.h
    sm/detail/Reactor.h)
  get_filename_component(directory ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${KEST_INCLUDE_DIR}/${directory})
endforeach()
install(FILES ctl/kestctl.bash DESTINATION share/bash-completion/completions RENAME kestctl)
install(DIRECTORY examples/ DESTINATION share/kest-slice-dma/examples)
# systemd looks here under the prefixes /usr and /usr/local, where it finds the agent too.
install(FILES packaging/kest-slice-agent.service DESTINATION lib/systemd/system)

install(EXPORT kest-slice-dma NAMESPACE kest:: FILE kest-slice-dma-targets.cmake
  DESTINATION ${KEST_PACKAGE_DIR})
configure_package_config_file(cmake/kest-slice-dma-config.cmake.in
  ${CMAKE_BINARY_DIR}/kest-slice-dma-config.cmake INSTALL_DESTINATION ${KEST_PACKAGE_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/kest-slice-dma-config-version.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES
  ${CMAKE_BINARY_DIR}/kest-slice-dma-config.cmake
  ${CMAKE_BINARY_DIR}/kest-slice-dma-config-version.cmake
  DESTINATION ${KEST_PACKAGE_DIR})

configure_file(cmake/kest-slice-dma.pc.in ${CMAKE_BINARY_DIR}/kest-slice-dma.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/kest-slice-dma.pc DESTINATION ${KEST_LIB_DIR}/pkgconfig)
