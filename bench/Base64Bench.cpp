// Base64 of 64 MB compared with the block functions of OpenSSL, with those of Qt, and with the limit of the
// machine. Run it with --benchmark_enable_random_interleaving=true --benchmark_repetitions=5.
#include "OrvLibrary/IO/Base64.h"

#include <cstring>
#include <memory>
#include <random>

#include <openssl/evp.h>

#include <QByteArray>

#include <benchmark/benchmark.h>

#include "OrvLibrary/IO/Base64Kernels_p.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::size_t kSize = 64 * 1000 * 1000 / 3 * 3;

const Bytes& bytes()
{
    static const Bytes sBytes = [] {
        Bytes made(kSize);
        std::mt19937_64 random(1);
        for (std::size_t i = 0; i + 8 <= made.size(); i += 8) {
            const std::uint64_t value = random();
            std::memcpy(&made[i], &value, 8);
        }
        return made;
    }();
    return sBytes;
}

const std::string& text()
{
    static const std::string sText = Base64::encode(bytes());
    return sText;
}

const QByteArray& qtBytes()
{
    static const QByteArray sBytes(reinterpret_cast<const char*>(bytes().data()), static_cast<int>(kSize));
    return sBytes;
}

const QByteArray& qtText()
{
    static const QByteArray sText = qtBytes().toBase64();
    return sText;
}

template <class Work>
void measure(benchmark::State& state, Work work)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(work());
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kSize));
}

// Each function takes its input and returns its result in new memory, as the public operations do.

void encodeOurs(benchmark::State& state)
{
    measure(state, [input = &bytes()] { return Base64::encode(*input); });
}

void decodeOurs(benchmark::State& state)
{
    measure(state, [input = &text()] { return Base64::decode(*input); });
}

void encodeByTables(benchmark::State& state)
{
    measure(state, [input = &bytes()] {
        std::unique_ptr<char[]> made(new char[kSize / 3 * 4]);
        base64::scalarKernels().encode(input->data(), input->size(), made.get());
        return made;
    });
}

void decodeByTables(benchmark::State& state)
{
    measure(state, [input = &text()] {
        std::unique_ptr<unsigned char[]> made(new unsigned char[kSize]);
        base64::scalarKernels().decode(input->data(), input->size(), made.get());
        return made;
    });
}

void encodeOpenSsl(benchmark::State& state)
{
    measure(state, [input = &bytes()] {
        std::unique_ptr<unsigned char[]> made(new unsigned char[kSize / 3 * 4 + 1]);
        EVP_EncodeBlock(made.get(), input->data(), static_cast<int>(input->size()));
        return made;
    });
}

void decodeOpenSsl(benchmark::State& state)
{
    measure(state, [input = &text()] {
        std::unique_ptr<unsigned char[]> made(new unsigned char[kSize]);
        EVP_DecodeBlock(made.get(), reinterpret_cast<const unsigned char*>(input->data()),
                        static_cast<int>(input->size()));
        return made;
    });
}

void encodeQt(benchmark::State& state)
{
    measure(state, [input = &qtBytes()] { return input->toBase64(); });
}

void decodeQt(benchmark::State& state)
{
    measure(state, [input = &qtText()] { return QByteArray::fromBase64(*input); });
}

/// The limit of the machine: copies the text into new memory.
void copyText(benchmark::State& state)
{
    measure(state, [input = &text()] {
        std::unique_ptr<char[]> made(new char[input->size()]);
        std::memcpy(made.get(), input->data(), input->size());
        return made;
    });
}

void copyBytes(benchmark::State& state)
{
    measure(state, [input = &bytes()] {
        std::unique_ptr<unsigned char[]> made(new unsigned char[input->size()]);
        std::memcpy(made.get(), input->data(), input->size());
        return made;
    });
}

} // namespace

BENCHMARK(encodeOurs)->Unit(benchmark::kMillisecond);
BENCHMARK(encodeByTables)->Unit(benchmark::kMillisecond);
BENCHMARK(encodeOpenSsl)->Unit(benchmark::kMillisecond);
BENCHMARK(encodeQt)->Unit(benchmark::kMillisecond);
BENCHMARK(copyText)->Unit(benchmark::kMillisecond);
BENCHMARK(decodeOurs)->Unit(benchmark::kMillisecond);
BENCHMARK(decodeByTables)->Unit(benchmark::kMillisecond);
BENCHMARK(decodeOpenSsl)->Unit(benchmark::kMillisecond);
BENCHMARK(decodeQt)->Unit(benchmark::kMillisecond);
BENCHMARK(copyBytes)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
