// The time for sorting a model of 100,000 siblings: library nodes in their own order, plain items in the
// order of the model, and a proxy that sorts the same names by locale.
#include <random>
#include <string>
#include <vector>

#include <QGuiApplication>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>

#include <benchmark/benchmark.h>

#include "OrvLibrary/UI/TreeItemData.h"

namespace {

constexpr int kSiblings = 100000;

const std::vector<std::string>& names()
{
    static const std::vector<std::string> made = [] {
        std::mt19937 random(42);
        const char* const words[] = {"Door", "window", "T\xC3\xBCr",  "Caf\xC3\xA9 table",
                                     "Sofa", "lamp",   "\xC3\x84rmel"};
        std::vector<std::string> all;
        for (int i = 0; i < kSiblings; ++i)
            all.push_back(std::string(words[random() % std::size(words)]) + " " +
                          std::to_string(random() % 50000));
        return all;
    }();
    return made;
}

template <class Make>
void fill(QStandardItemModel& model, const Make& make)
{
    QList<QStandardItem*> items;
    for (const std::string& name : names())
        items << make(name);
    model.invisibleRootItem()->appendRows(items);
}

QStandardItem* plainItem(const std::string& name)
{
    return new QStandardItem(QString::fromStdString(name));
}

QStandardItem* libraryItem(const std::string& name)
{
    return new Library::TreeItemData(1, fileString("/catalogs/Doors.orvlib"), name);
}

template <class Make>
void sortModel(benchmark::State& state, const Make& make)
{
    for (auto _ : state) {
        state.PauseTiming();
        QStandardItemModel model;
        fill(model, make);
        state.ResumeTiming();
        model.sort(0);
        state.PauseTiming();
        model.clear();
        state.ResumeTiming();
    }
}

void sortPlainItems(benchmark::State& state)
{
    sortModel(state, plainItem);
}

// Measures the first sorting, which computes the keys.
void sortLibraryItems(benchmark::State& state)
{
    sortModel(state, libraryItem);
}

void sortLibraryItemsAgain(benchmark::State& state)
{
    QStandardItemModel model;
    fill(model, libraryItem);
    Qt::SortOrder order = Qt::AscendingOrder;
    for (auto _ : state) {
        model.sort(0, order);
        order = order == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    }
}

void sortLocaleAwareProxy(benchmark::State& state)
{
    QStandardItemModel model;
    fill(model, plainItem);
    for (auto _ : state) {
        QSortFilterProxyModel proxy;
        proxy.setSourceModel(&model);
        proxy.setSortLocaleAware(true);
        proxy.sort(0);
    }
}

BENCHMARK(sortPlainItems)->Unit(benchmark::kMillisecond);
BENCHMARK(sortLibraryItems)->Unit(benchmark::kMillisecond);
BENCHMARK(sortLibraryItemsAgain)->Unit(benchmark::kMillisecond);
BENCHMARK(sortLocaleAwareProxy)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
