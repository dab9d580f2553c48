#include "ui_fixture.h"

#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication app(argc, argv);
    testing::InitGoogleTest();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    busquill::test::keptUntilTheEnd.clear();
    return 0;
}
