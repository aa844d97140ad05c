#include "bench/Benches.h"

#include <QApplication>
#include <QSysInfo>

#include <iostream>

int main(int argc, char** argv)
{
    using namespace varno::bench;
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::AddCustomContext("machine", QSysInfo::prettyProductName().toStdString());
    benchmark::AddCustomContext("build", VARNO_BUILD ", Qt " + std::string(qVersion()));
    Table table;
    addEventDecoding(table);
    addHistory(table);
    addStreaming(table);
    addOperations(table);
    addReading(table);
    addPage(table);
    addScreen(table);
    addFirstWord(table);
    table.run({argv, argv + argc});
    table.print(std::cout);
    return 0;
}
