// Several threads read one log; nobody changes it meanwhile.
#include <array>
#include <thread>

#include "examples/SampleLog.h"

int main() {
    const Zr::Ptr<kesta> log = sampleLog();
    std::array<unsigned, 4> lengths{};
    std::array<std::thread, 4> readers;
    for (unsigned row = 0; row < readers.size(); ++row) {
        readers[row] = std::thread([&log, &lengths, row] {
            lengths[row] = log->getField(row, log->get_fieldnum("Notes")).length();
        });
    }
    for (std::thread& reader : readers) reader.join();
    return lengths[2] == 3 ? 0 : 1;
}
