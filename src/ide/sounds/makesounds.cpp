// SPDX-License-Identifier: GPL-3.0-or-later
//
// Makes the sounds of the environment when it is built: makesounds FOLDER writes save.wav, two soft rising tones, and
// snip.wav, two short clicks as of scissors. Mono, 16 bits, 22,050 samples a second.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int Rate = 22050;
constexpr double Pi = 3.14159265358979;

struct Tone {
    double start, length;  // seconds
    double frequency;      // 0: noise
    double loudness;       // 0 to 1
};

// Each tone swells within 5 milliseconds and fades to its end.
void add(const Tone& tone, std::vector<double>& samples) {
    const auto from = static_cast<std::size_t>(tone.start * Rate),
               count = static_cast<std::size_t>(tone.length * Rate);
    if (samples.size() < from + count) samples.resize(from + count);
    std::uint32_t random = 1;
    for (std::size_t i = 0; i < count; ++i) {
        const double t = static_cast<double>(i) / Rate, rest = 1 - t / tone.length;
        random = random * 1664525U + 1013904223U;
        const double wave = tone.frequency > 0 ? std::sin(2 * Pi * tone.frequency * t)
                                               : static_cast<double>(random >> 16) / 32768.0 - 1;
        samples[from + i] += wave * tone.loudness * rest * rest * std::min(1.0, t / 0.005);
    }
}

void put(std::string& bytes, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFFU);
}

std::string waveFile(const std::vector<double>& samples) {
    const auto size = static_cast<std::uint32_t>(2 * samples.size());
    std::string bytes = "RIFF";
    put(bytes, 36 + size, 4);
    bytes += "WAVEfmt ";
    put(bytes, 16, 4);
    put(bytes, 1, 2);  // plain samples
    put(bytes, 1, 2);  // channels
    put(bytes, Rate, 4);
    put(bytes, 2 * Rate, 4);
    put(bytes, 2, 2);
    put(bytes, 16, 2);
    bytes += "data";
    put(bytes, size, 4);
    for (const double sample : samples)
        put(bytes, static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(sample * 32767))), 2);
    return bytes;
}

template <std::size_t N>
bool make(const std::string& file, const std::array<Tone, N>& tones) {
    std::vector<double> samples;
    for (const Tone& tone : tones) add(tone, samples);
    std::ofstream out(file, std::ios::binary);
    out << waveFile(samples);
    return out.flush().good();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return std::fputs("usage: makesounds FOLDER\n", stderr), 2;
    const std::string folder = std::string(argv[1]) + "/";
    const bool made =
        make(folder + "save.wav", std::array{Tone{0, 0.16, 660, 0.25}, Tone{0.09, 0.22, 880, 0.25}}) &&
        make(folder + "snip.wav", std::array{Tone{0, 0.03, 0, 0.3}, Tone{0.09, 0.04, 0, 0.35}});
    return made ? 0 : 1;
}
