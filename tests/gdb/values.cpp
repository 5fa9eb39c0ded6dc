// Values for the debugger to show: tests/gdb/check.sh stops where they are all there.
#include <cstddef>
#include <string>

#include "record/kesta.h"
#include "support/Cookie.h"

namespace {

/// Room for an object that was never made.
template <class T>
struct Wild {
    alignas(T) unsigned char bytes[sizeof(T)];
    Wild() {
        for (std::size_t i = 0; i < sizeof bytes; ++i) bytes[i] = static_cast<unsigned char>(17 + 13 * i);
    }
    const T& value() const { return *reinterpret_cast<const T*>(bytes); }
};

// Where the debugger stops.
void stop() {
    asm volatile("");
}

}  // namespace

int main() {
    const LightweightString<char> nothing;
    LightweightString<char> emptied("x");
    emptied.resizeFor(0);
    const LightweightString<char> text("Start \"time\"");
    const LightweightString<char> withZero("a\0b", 3);
    const LightweightString<char> endless(std::string(1000000, 'x'));
    const LightweightString<wchar_t> wide(L"caf\u00e9.log");

    using Text = LightweightString<char>;
    Zr::SharedBlock* const block = Zr::SharedBlock::make(Text::sizeInBlock("loaded"), 1);
    const Text loaded = Text::makeInBlock(*block, block->room(), "loaded");

    const Zr::Ptr<dbrecord> none;
    const Zr::Ptr<dbrecord> record(new dbrecord(3));
    const Zr::Ptr<dbrecord> shared(record);
    record->set_field(0, "12-1", false);
    record->set_field(2, "LW001", false);
    record->set_tag(1);
    const dbrecord blank(0);

    [[maybe_unused]] const Cookie null;
    const Cookie cookie("M0123456789ABCDEF0123456789abcdef07", false);

    const Wild<LightweightString<char>> textRoom;
    const Wild<LightweightString<wchar_t>> wideRoom;
    const Wild<Zr::Ptr<dbrecord>> pointerRoom;
    const Wild<dbrecord> recordRoom;
    [[maybe_unused]] const auto& wildText = textRoom.value();
    [[maybe_unused]] const auto& wildWide = wideRoom.value();
    [[maybe_unused]] const auto& wildPointer = pointerRoom.value();
    [[maybe_unused]] const auto& wildRecord = recordRoom.value();
    LightweightString<char> damaged("short");
    reinterpret_cast<unsigned*>(damaged.writableText())[-2] = 100000;  // its length

    stop();
    reinterpret_cast<unsigned*>(const_cast<char*>(damaged.c_str()))[-2] = 5;
    return 0;
}
