#include "bench/Benches.h"

#include <QApplication>
#include <QSysInfo>

#include <fstream>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace varno::bench;

std::string processorName()
{
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("model name"))
            return line.substr(line.find(':') + 2);
    }
    return QSysInfo::currentCpuArchitecture().toStdString();
}

void printMachine(std::ostream& out)
{
    out << "\nmachine: " << processorName() << ", " << std::thread::hardware_concurrency()
        << " cores, " << QSysInfo::prettyProductName().toStdString()
        << "; compiler: " << VARNO_COMPILER << "; Qt " << qVersion()
        << "; build type: " << VARNO_BUILD_TYPE << '\n';
}

/// The flags given, behind ours. What is compared runs interleaved, so that a slow moment of the
/// machine hits both sides.
std::vector<std::string> flags(int argc, char** argv)
{
    std::vector<std::string> all = {argv[0], "--benchmark_enable_random_interleaving=true",
                                    "--benchmark_repetitions=15", "--benchmark_min_time=0.1"};
    all.insert(all.end(), argv + 1, argv + argc);
    return all;
}

void initialise(int argc, char** argv)
{
    static std::vector<std::string> all = flags(argc, argv);
    static std::vector<char*> pointers;
    pointers.reserve(all.size());
    for (std::string& flag : all)
        pointers.push_back(flag.data());
    int count = static_cast<int>(pointers.size());
    benchmark::Initialize(&count, pointers.data());
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    initialise(argc, argv);
    Table table;
    addEventDecoding(table);
    addHistory(table);
    addStreaming(table);
    addStart(table);
    addReading(table);
    addFinding(table);
    addPage(table);
    addScreen(table);
    benchmark::RunSpecifiedBenchmarks(&table);
    printMachine(std::cout);
    std::cout << '\n';
    table.print(std::cout);
    return 0;
}
