// Reads JSON texts of 100 KB and 10 MB, compared with two other readers and with building the same tree
// without a text; reads manufacturer files into the table; looks up records among 100,000 manufacturers;
// merges 10,000 filters into 10,000. Run it with --benchmark_enable_random_interleaving=true
// --benchmark_repetitions=5.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>

#include <malloc.h>
#include <unistd.h>

#include <benchmark/benchmark.h>
#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <nlohmann/json.hpp>

#include "OrvLibrary/LibraryFilterManager.h"
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/TimeUtils.h"
#include "OrvLibrary/json/json_reader.h"
#include "OrvLibrary/json/json_writer.h"

namespace {

using Node = json::grammar<char>::variant;

json_writer::Object record(long id, std::mt19937& random)
{
    const auto text = [&random](const char* start, unsigned most) {
        std::string made = start;
        for (unsigned length = random() % (most + 1); length > 0; --length)
            made += static_cast<char>('a' + random() % 26);
        return made;
    };
    json_writer::Object object;
    object.add_element<long>("Id", id);
    object.add_element("Last_Modified", std::string("20261121T033512.250000"));
    object.add_element("Name", text("Möbelwerk ", 20));
    object.add_element("Url", text("https://www.", 20) + ".example/products?\"a\"");
    object.add_element("Phone", std::string(random() % 2 ? "default" : "+49 555 0100"));
    object.add_element("Fax", std::string("default"));
    object.add_element("Email", text("info@", 20) + ".example");
    object.add_element("Logo", text("logos/", 12) + ".png");
    object.add_element<bool>("Lock", random() % 8 == 0);
    object.add_element<bool>("Deleted", false);
    return object;
}

constexpr std::int64_t kRecordSize = 430; ///< approximately

/// Manufacturer records of about `size` bytes together, in an array. Repeated keys are not possible here,
/// because one of the other readers keeps only the last of them.
std::string recordsText(std::int64_t size)
{
    std::mt19937 random(1);
    json_writer::Array records;
    for (long id = 0; id < size / kRecordSize; ++id)
        records.add_element(record(id, random));
    json_writer::Object root;
    root.add_element("Last_Modified", std::string("20261121T033512.250000"));
    root.add_element("Manufacturers", records);
    return json_writer::toText(root);
}

/// The same records in the format of a manufacturer file.
std::string manufacturersText(std::int64_t size)
{
    std::mt19937 random(1);
    json_writer::Object root;
    root.add_element("Last_Modified", std::string("20261121T033512.250000"));
    for (long id = 0; id < size / kRecordSize; ++id)
        root.add_element("Manufacturer", record(id, random));
    return json_writer::toText(root);
}

Node parse(const std::string& text)
{
    return json::parse(text.begin(), text.end());
}

/// Copies the tree node by node: the cost without reading a text.
Node clone(const boost::any& value)
{
    if (const auto* members = boost::any_cast<json::object>(&value)) {
        auto node = std::make_shared<boost::any>(json::object());
        auto& copy = *boost::any_cast<json::object>(node.get());
        for (const auto& [key, member] : *members)
            copy.emplace_hint(copy.end(), key, clone(*member));
        return node;
    }
    if (const auto* elements = boost::any_cast<json::array>(&value)) {
        auto node = std::make_shared<boost::any>(json::array());
        auto& copy = *boost::any_cast<json::array>(node.get());
        for (const auto& element : *elements)
            copy.push_back(clone(*element));
        return node;
    }
    return std::make_shared<boost::any>(value);
}

std::unique_ptr<boost::property_tree::ptree> readPropertyTree(const std::string& text)
{
    std::istringstream stream(text);
    auto tree = std::make_unique<boost::property_tree::ptree>();
    boost::property_tree::read_json(stream, *tree);
    return tree;
}

std::unique_ptr<nlohmann::json> readNlohmann(const std::string& text)
{
    return std::make_unique<nlohmann::json>(nlohmann::json::parse(text));
}

/// Reads a manufacturer file into the table with its records.
std::map<long, Manufacturer> readTable(const std::string& path)
{
    std::map<long, Manufacturer> table;
    boost::posix_time::ptime lastModified;
    std::string defaultText;
    if (!ManufacturerManager::read_manufacturer_file(fileString(path), table, &lastModified, &defaultText))
        std::abort();
    return table;
}

/// Reads a file into a tree only.
boost::property_tree::ptree readPropertyTreeFile(const std::string& path)
{
    boost::property_tree::ptree tree;
    boost::property_tree::read_json(path, tree);
    return tree;
}

using Clock = std::chrono::steady_clock;

/// The duration of `work` in seconds. Its result is destroyed afterwards.
template <class Work>
double secondsOf(const Work& work)
{
    const auto start = Clock::now();
    const auto result = work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Reads once and prints the seconds. Each measurement needs a new process, like a host that reads its files
/// when it starts. In a used process, the state of the heap after earlier reads would dominate the time.
int readOnce(const std::string& reader, const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    double seconds = 0;
    if (reader == "ours")
        seconds = secondsOf([&text] { return parse(text); });
    else if (reader == "propertyTree")
        seconds = secondsOf([&text] { return readPropertyTree(text); });
    else if (reader == "nlohmann")
        seconds = secondsOf([&text] { return readNlohmann(text); });
    else if (reader == "table")
        seconds = secondsOf([&path] { return readTable(path); });
    else if (reader == "propertyTreeFile")
        seconds = secondsOf([&path] { return readPropertyTreeFile(path); });
    else if (reader == "memory") {
        const std::size_t before = mallinfo2().uordblks;
        const Node tree = parse(text);
        seconds = static_cast<double>(mallinfo2().uordblks - before) / static_cast<double>(text.size());
    }
    std::printf("%.9f\n", seconds);
    return 0;
}

double runOnce(const std::string& reader, const std::string& path)
{
    const std::string command =
        "/proc/" + std::to_string(getpid()) + "/exe --read " + reader + " '" + path + "'";
    FILE* const pipe = popen(command.c_str(), "r");
    double value = 0;
    if (!pipe || std::fscanf(pipe, "%lf", &value) != 1)
        std::abort();
    pclose(pipe);
    return value;
}

void readInNewProcess(benchmark::State& state, const std::string& reader)
{
    const bool isFile = reader == "table" || reader == "propertyTreeFile";
    const std::string text = isFile ? manufacturersText(state.range(0)) : recordsText(state.range(0));
    const auto path = std::filesystem::temp_directory_path() / "orv-json-bench.json";
    std::ofstream(path, std::ios::binary) << text;
    for (auto _ : state)
        state.SetIterationTime(runOnce(reader, path));
    if (reader == "ours")
        state.counters["memory/text"] = runOnce("memory", path);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
    std::filesystem::remove(path);
}

/// Reads the same text repeatedly in one process. The time includes destroying the tree.
template <class Work>
void readAgain(benchmark::State& state, Work work)
{
    const std::string text = recordsText(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(work(text));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

void readAgain_ours(benchmark::State& state)
{
    readAgain(state, parse);
}

void readAgain_propertyTree(benchmark::State& state)
{
    readAgain(state, readPropertyTree);
}

void readAgain_nlohmann(benchmark::State& state)
{
    readAgain(state, readNlohmann);
}

void readAgain_limit(benchmark::State& state)
{
    const Node tree = parse(recordsText(state.range(0)));
    readAgain(state, [&tree](const std::string&) { return clone(*tree); });
}

/// Reads a manufacturer file repeatedly. The time includes destroying the result.
template <class Work>
void readManufacturers(benchmark::State& state, Work work)
{
    const std::string text = manufacturersText(state.range(0));
    const auto path = std::filesystem::temp_directory_path() / "orv-manufacturers-bench.json";
    std::ofstream(path, std::ios::binary) << text;
    for (auto _ : state)
        benchmark::DoNotOptimize(work(path.string()));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
    std::filesystem::remove(path);
}

void manufacturers_ours(benchmark::State& state)
{
    readManufacturers(state, readTable);
}

void manufacturers_propertyTree(benchmark::State& state)
{
    readManufacturers(state, readPropertyTreeFile);
}

/// A root folder for the benchmark, installed as the host's.
class Root
{
public:
    Root() : mPaths(fileString(std::filesystem::temp_directory_path().string() + "/orv-json-bench"))
    {
        std::string reason;
        if (!mPaths.createFolders(reason))
            std::abort();
        mFormer = PathUtils::install(&mPaths);
    }
    ~Root()
    {
        PathUtils::install(mFormer);
        std::filesystem::remove_all(mPaths.root().toNativeString());
    }
    Root(const Root&) = delete;
    Root& operator=(const Root&) = delete;

private:
    RootPathUtils mPaths;
    PathUtils* mFormer;
};

constexpr long kManufacturers = 100000;

std::map<long, Manufacturer>& manufacturers()
{
    static std::map<long, Manufacturer> table;
    for (long id = 0; table.size() < kManufacturers; ++id)
        table.emplace(3 * id,
                      Manufacturer("n", "u", "p", "f", "l", "e", false, false, Library::getTimeNow()));
    return table;
}

const std::vector<long>& wantedIds()
{
    static const std::vector<long> ids = [] {
        std::mt19937 random(2);
        std::vector<long> made(1 << 16);
        for (long& id : made)
            id = static_cast<long>(random() % (3 * kManufacturers));
        return made;
    }();
    return ids;
}

template <class LookUp>
void measureLookUps(benchmark::State& state, LookUp lookUp)
{
    const std::vector<long>& ids = wantedIds();
    std::size_t next = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(lookUp(ids[next++ % ids.size()]));
}

/// Both look-ups use the same table, because the layout in memory influences the times.
void lookUp_manager(benchmark::State& state)
{
    const Root root;
    ManufacturerManager::cleanup();
    ManufacturerManager& manager = *ManufacturerManager::getManufacturerManager();
    manager.saveModifiedManufacturers(manufacturers(), "");
    measureLookUps(state, [&manager](long id) { return &manager.getManufacturer(id); });
    ManufacturerManager::cleanup();
}

void lookUp_bareMap(benchmark::State& state)
{
    const std::map<long, Manufacturer> table = manufacturers();
    measureLookUps(state, [&table](long id) {
        const auto found = table.find(id);
        return found == table.end() ? nullptr : &found->second;
    });
}

std::vector<LibraryFilter> filters(const std::string& kind, std::int64_t count)
{
    std::vector<LibraryFilter> made;
    for (long id = 0; id < count; ++id)
        made.push_back(LibraryFilter("Kitchen", id, {"Doors", "Windows", kind + std::to_string(id)}));
    return made;
}

/// Merges filters that all have one name, which is the hardest case. The time includes reading and writing
/// the file.
void mergeFilters(benchmark::State& state)
{
    const Root root;
    LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    const fileString file = manager.getFilterFullname() + fileString(".other");
    for (auto _ : state) {
        state.PauseTiming();
        LibraryFilterManager::saveFiltersToFile(file, filters("file", state.range(0)), 0);
        manager.setLibraryFilters(filters("own", state.range(0)));
        state.ResumeTiming();
        if (!manager.mergeFilters(file))
            state.SkipWithError("the merge failed");
    }
}

} // namespace

BENCHMARK(readAgain_ours)->Arg(100000)->Arg(10000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(readAgain_propertyTree)->Arg(100000)->Arg(10000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(readAgain_nlohmann)->Arg(100000)->Arg(10000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(readAgain_limit)->Arg(100000)->Arg(10000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(manufacturers_ours)->Arg(100000)->Arg(10000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(manufacturers_propertyTree)->Arg(100000)->Arg(10000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(lookUp_manager);
BENCHMARK(lookUp_bareMap);
BENCHMARK(mergeFilters)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    if (argc == 4 && std::string(argv[1]) == "--read")
        return readOnce(argv[2], argv[3]);
    for (const char* reader : {"ours", "propertyTree", "nlohmann", "table", "propertyTreeFile"}) {
        benchmark::RegisterBenchmark((std::string("read_") + reader).c_str(), readInNewProcess, reader)
            ->Arg(100000)
            ->Arg(10000000)
            ->Iterations(5)
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
