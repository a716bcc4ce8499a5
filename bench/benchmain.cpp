#include <benchmark/benchmark.h>

#include <QtWidgets/QApplication>

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const QApplication application(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
