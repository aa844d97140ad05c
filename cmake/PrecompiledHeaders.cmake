# Headers that many files include, compiled once for every target that works with the same modules of
# Qt. The release builds do without them, so that a file which forgets to include something is found.
set(VARNO_CORE_HEADERS
    <algorithm> <array> <chrono> <functional> <map> <memory> <mutex> <optional> <stop_token> <string>
    <thread> <utility> <variant> <vector>
    <QByteArray> <QCoreApplication> <QDateTime> <QDir> <QEvent> <QFile> <QFileInfo> <QHash> <QList>
    <QObject> <QPointer> <QString> <QStringList> <QTimer> <QUuid> <QVariant>
)
set(VARNO_WIDGET_HEADERS
    ${VARNO_CORE_HEADERS}
    <QApplication> <QIcon> <QKeyEvent> <QLabel> <QLineEdit> <QMouseEvent> <QPainter> <QScreen>
    <QScrollArea> <QScrollBar> <QTextBlock> <QTextDocument> <QTextLayout> <QToolTip> <QWidget>
    <QWindow>
)

# varno_headers(NAME HEADER ... [MODULES module ...]): a target whose compiled headers others can use
function(varno_headers name)
    cmake_parse_arguments(HEADERS "" "" "MODULES" ${ARGN})
    file(CONFIGURE OUTPUT ${name}.cpp CONTENT "")
    add_library(${name} OBJECT ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
    set_target_properties(${name} PROPERTIES AUTOMOC OFF AUTORCC OFF)
    target_link_libraries(${name} PRIVATE ${HEADERS_MODULES})
    target_precompile_headers(${name} PRIVATE ${HEADERS_UNPARSED_ARGUMENTS})
endfunction()

varno_headers(varno_core_headers ${VARNO_CORE_HEADERS} MODULES Qt6::Core)
varno_headers(varno_widget_headers ${VARNO_WIDGET_HEADERS} MODULES Qt6::Widgets)

# varno_precompiled(core|widget TARGET ...)
function(varno_precompiled kind)
    foreach(target IN LISTS ARGN)
        target_precompile_headers(${target} REUSE_FROM varno_${kind}_headers)
    endforeach()
endfunction()
