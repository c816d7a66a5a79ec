# The application: its object, which the tests link, and the program around it.
qorvane_add_library(QorvaneApp
    SOURCES
        ApplicationSetup.cpp ApplicationSetup.h
        IdleWatch.cpp IdleWatch.h
        QorvaneApp.cpp QorvaneApp.h
    PUBLIC QorvaneLibrary QorvaneViews
)

set_source_files_properties(ApplicationSetup.cpp PROPERTIES COMPILE_DEFINITIONS "QORVANE_VERSION=\"${PROJECT_VERSION}\"")
qt_add_resources(QorvaneApp qorvaneAppIcon
    PREFIX /icons
    BASE "${CMAKE_CURRENT_SOURCE_DIR}/resources"
    FILES resources/com.qorvane.Qorvane.svg
)

add_executable(qorvane main.cpp)
target_link_libraries(qorvane PRIVATE QorvaneApp)

include(GNUInstallDirs)
install(TARGETS qorvane RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(FILES resources/com.qorvane.Qorvane.desktop DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES resources/com.qorvane.Qorvane.metainfo.xml DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
install(FILES resources/com.qorvane.Qorvane.svg DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")
