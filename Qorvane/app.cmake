# The application: its object, which the tests link, and the program around it.
qorvane_add_library(QorvaneApp
    SOURCES
        IdleWatch.cpp IdleWatch.h
        QorvaneApp.cpp QorvaneApp.h
    PUBLIC QorvaneLibrary QorvaneViews
)

add_executable(qorvane main.cpp)
target_compile_definitions(qorvane PRIVATE QORVANE_VERSION="${PROJECT_VERSION}")
target_link_libraries(qorvane PRIVATE QorvaneApp)
qt_add_resources(qorvane qorvaneAppIcon
    PREFIX /icons
    BASE "${CMAKE_CURRENT_SOURCE_DIR}/resources"
    FILES resources/com.qorvane.Qorvane.svg
)

include(GNUInstallDirs)
install(TARGETS qorvane RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(FILES resources/com.qorvane.Qorvane.desktop DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES resources/com.qorvane.Qorvane.metainfo.xml DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
install(FILES resources/com.qorvane.Qorvane.svg DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")
