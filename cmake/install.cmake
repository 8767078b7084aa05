# Where an installation puts the programs, the desktop entry, the icons, the man pages and the
# shared files, and the .deb made from it. Tests and benchmarks stay in the build folder.
include(GNUInstallDirs)

set(TP_INSTALL_DATADIR ${CMAKE_INSTALL_DATADIR}/tallyport)

# The installed demo-data generator finds the schema scripts relative to itself, so the
# installation can be moved; from a build folder it falls back to the sources.
if(TARGET tallyport_demo)
  file(RELATIVE_PATH tp_data_from_bin /${CMAKE_INSTALL_BINDIR} /${TP_INSTALL_DATADIR})
  target_compile_definitions(tallyport_demo PRIVATE TP_INSTALLED_DATA_DIR="${tp_data_from_bin}")
endif()

foreach(program tallyport tallyport-batch tallyport-demo-db)
  if(TARGET ${program})
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()

install(FILES resources/tallyport.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(DIRECTORY resources/hicolor DESTINATION ${CMAKE_INSTALL_DATADIR}/icons FILES_MATCHING PATTERN "*.png")
install(FILES data/schema_sqlite.sql data/schema_postgres.sql DESTINATION ${TP_INSTALL_DATADIR})
install(FILES data/examples/KRV.ini data/examples/lumtrek.ini DESTINATION ${TP_INSTALL_DATADIR}/examples)

# The man pages name the installed version and folders. They, and the changelog, are
# installed compressed as Debian wants them (gzip -n: no name or time inside, so a rebuild
# gives the same bytes); configure_file makes CMake run again when a source changes.
find_program(TP_GZIP gzip REQUIRED)
function(tp_gzip_at_configure source target)
  execute_process(COMMAND ${TP_GZIP} -9 -n -c ${source} OUTPUT_FILE ${target} RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "gzip could not compress ${source}")
  endif()
endfunction()

set(TP_SHARED_FOLDER ${CMAKE_INSTALL_FULL_DATADIR}/tallyport)
foreach(page tallyport.1 tallyport-batch.1 tallyport-demo-db.1)
  configure_file(man/${page}.in ${CMAKE_BINARY_DIR}/man/${page} @ONLY)
  tp_gzip_at_configure(${CMAKE_BINARY_DIR}/man/${page} ${CMAKE_BINARY_DIR}/man/${page}.gz)
  install(FILES ${CMAKE_BINARY_DIR}/man/${page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()

configure_file(packaging/changelog.in ${CMAKE_BINARY_DIR}/packaging/changelog @ONLY)
tp_gzip_at_configure(${CMAKE_BINARY_DIR}/packaging/changelog ${CMAKE_BINARY_DIR}/packaging/changelog.gz)
install(FILES packaging/copyright ${CMAKE_BINARY_DIR}/packaging/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tallyport)

# Installs this build into a scratch folder and runs what was installed.
if(TARGET tallyport-batch AND TARGET tallyport-demo-db)
  add_test(NAME install.scratch_prefix
           COMMAND ${CMAKE_SOURCE_DIR}/tests/install/check_install.sh
                   ${CMAKE_COMMAND} ${CMAKE_BINARY_DIR} ${PROJECT_VERSION})
  set_tests_properties(install.scratch_prefix PROPERTIES
                       ENVIRONMENT "QT_QPA_PLATFORM=offscreen" TIMEOUT 300)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tallyport)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "Tallyport Systems")
set(CPACK_PACKAGE_CONTACT "Tallyport Systems <support@tallyport.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "moves fleet and time-keeping data between its database and text files")
# CPack puts the summary in front of this as the first line.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "Tallyport exports approved time records, inventory records, GPS track
points, map locations and pinpoints of a fleet-tracking and time-keeping
product's database (SQLite or PostgreSQL) into comma-delimited text files,
and imports customers, employees, vehicles, map locations and pinpoints
from such files. tallyport-batch runs the export from scheduled jobs.")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${CPACK_PACKAGE_CONTACT}")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Plugins that no binary links to: the PostgreSQL driver of QtSql and the window-system
# plugins of QtGui.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6sql6-psql, qt6-qpa-plugins")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
include(CPack)
