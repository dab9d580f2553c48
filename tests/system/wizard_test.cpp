// Programs of the wizard on the board, compared with a scan of the traffic that the board has seen.

#include "support/capture_over_wire.h"
#include "tracesetup/setup_wizard.h"

#include <gmock/gmock.h>

#include <functional>
#include <optional>

namespace busquill::test {
namespace {

using boardsim::Family;
using boardsim::GetBit;
using boardsim::GetField;
using boardsim::Record;
using testing::IsEmpty;

/// A value as it is typed, and the condition on a number that it stands for.
struct TypedValue {
    const char* text = "";
    std::function<bool(std::uint64_t)> holds;
};
TypedValue Any() {
    return {};
}
TypedValue Is(const char* text, std::uint64_t value, std::uint64_t mask = ~std::uint64_t{0}) {
    return {text, [=](std::uint64_t found) { return (found & mask) == value; }};
}
TypedValue Between(const char* text, std::uint64_t low, std::uint64_t high) {
    return {text, [=](std::uint64_t found) { return found > low && found < high; }};
}

struct Question {
    WizardCycle cycle;
    std::size_t direction;
    TypedValue address = {};
    TypedValue data = {};
    /// Whether these command lines belong to such a cycle.
    std::function<bool(std::uint64_t)> command = {};
};

/// The samples of a run, as indexes of the traffic, and where the run ends in the traffic.
struct Expected {
    std::size_t trigger = 0;
    std::vector<std::size_t> before; // the trigger, the oldest first
    std::vector<std::size_t> after;
    std::size_t end = 0;
};

class WizardOverWire : public CaptureOverWire {
protected:
    static constexpr std::size_t half = 512; // of the board's memory

    void Start(const std::string& model, const std::string& familyName, Family family,
               int busByte = 0) {
        Connect({"--model", model, "--bus-byte", std::to_string(busByte), "--family", familyName,
                 "--buffer", "1", "--seed", "3"});
        traffic = boardsim::MakeRecords(family, 3, 1500000);
    }
    WizardAnswer Answer(const Question& question) {
        WizardAnswer answer{question.cycle, question.direction, {}, {}};
        answer.address = *ParseWizardValue(question.address.text, prompts);
        answer.data = *ParseWizardValue(question.data.text, prompts);
        return answer;
    }
    /// Finds the trigger by successive conditions, from where the last run ended.
    template <typename Store>
    Expected Scan(const std::vector<std::function<bool(std::size_t)>>& conditions, Store stores) {
        Expected expected;
        std::size_t at = position;
        for (const auto& condition : conditions) {
            while (!condition(at)) {
                if (stores(at)) {
                    expected.before.push_back(at);
                }
                ++at;
            }
            if (&condition != &conditions.back() && stores(at)) {
                expected.before.push_back(at);
            }
            ++at;
        }
        expected.trigger = at - 1;
        expected.after.push_back(expected.trigger);
        for (; expected.after.size() < half; ++at) {
            if (stores(at)) {
                expected.after.push_back(at);
            }
        }
        expected.end = at;
        return expected;
    }
    /// Builds and runs the program, and compares its capture with the scan.
    void Run(const Question& trigger, const Question& kept, const Expected& expected) {
        ASSERT_LT(expected.end, traffic.size()) << "the test needs more traffic";
        BuildWizardSetup(document->setup, Answer(trigger), Answer(kept));
        Go();
        ASSERT_TRUE(Complete());
        std::vector<std::size_t> samples = expected.before;
        if (samples.size() > half) {
            samples.erase(samples.begin(), samples.end() - half);
        }
        EXPECT_EQ(document->Marker(0, false), static_cast<std::int64_t>(samples.size()));
        samples.insert(samples.end(), expected.after.begin(), expected.after.end());
        const std::vector<Record> captured = Captured();
        ASSERT_EQ(captured.size(), samples.size());
        for (std::size_t i = 0; i < captured.size(); ++i) {
            ASSERT_TRUE(SameLines(captured[i], traffic[samples[i]])) << i;
        }
        position = expected.end;
        EXPECT_THAT(prompts.Texts(), IsEmpty());
    }
    /// Compares all but the time, which counts from the previously stored sample.
    static bool SameLines(Record a, Record b) {
        boardsim::SetField(a, boardsim::bitTime, boardsim::timeBits, 0);
        boardsim::SetField(b, boardsim::bitTime, boardsim::timeBits, 0);
        return a == b;
    }

    std::vector<Record> traffic;
    std::size_t position = 0;
};

/// A bus whose transfers have their address first and their data later.
class PciWizard : public WizardOverWire {
protected:
    explicit PciWizard(int configuration = 0, int bits = 32)
        : busByte(configuration), busBits(bits) {}

    void StartPci(const std::string& familyName, Family family) {
        Start("PCIKite", familyName, family, busByte);
        std::optional<std::uint64_t> current;
        for (const Record& record : traffic) {
            if (IsAddress(record)) {
                current = GetField(record, 64, 4);
            } else if (GetBit(record, 72) && GetBit(record, 74)) {
                current.reset(); // FRAME and IRDY are inactive: the bus is idle
            }
            commands.push_back(current);
        }
    }
    static bool IsAddress(const Record& record) { return GetBit(record, 95); }
    bool AddressHolds(const Question& asked, std::size_t at) const {
        return IsAddress(traffic[at]) && asked.command(GetField(traffic[at], 64, 4)) &&
               (!asked.address.holds || asked.address.holds(GetField(traffic[at], 0, busBits)));
    }
    bool DataHolds(const Question& asked, std::size_t at) const {
        const bool ofCommand =
            asked.cycle == WizardCycle::All || (commands[at] && asked.command(*commands[at]));
        return !IsAddress(traffic[at]) && !IsAttribute(traffic[at]) && ofCommand &&
               asked.data.holds(GetField(traffic[at], 0, busBits));
    }
    bool IsAttribute(const Record& record) const { return isPciX && GetBit(record, 93); }
    bool Stores(const Question& asked, std::size_t at) const {
        if (!asked.address.holds && !asked.data.holds) {
            return asked.cycle == WizardCycle::All || AddressHolds(asked, at);
        }
        return (asked.address.holds && AddressHolds(asked, at)) ||
               (asked.data.holds && DataHolds(asked, at));
    }
    void Check(const Question& trigger, const Question& kept) {
        SCOPED_TRACE(std::string(trigger.address.text) + " / " + trigger.data.text + " / " +
                     kept.address.text + " / " + kept.data.text);
        std::vector<std::function<bool(std::size_t)>> conditions;
        if (trigger.address.holds) {
            conditions.push_back([&](std::size_t at) { return AddressHolds(trigger, at); });
        }
        if (trigger.data.holds) {
            conditions.push_back([&](std::size_t at) { return DataHolds(trigger, at); });
        }
        if (conditions.empty()) {
            conditions.push_back([&](std::size_t at) { return Stores(trigger, at); });
        }
        Run(trigger, kept, Scan(conditions, [&](std::size_t at) { return Stores(kept, at); }));
    }

    static Question Of(WizardCycle cycle, std::size_t direction, TypedValue address = {},
                       TypedValue data = {}) {
        // Bit 0 is a write; the three bits above are 1 for I/O, 3 for memory, 5 for configuration.
        const std::uint64_t kind = cycle == WizardCycle::Memory ? 3
                                   : cycle == WizardCycle::Io   ? 1
                                                                : 5;
        return {cycle, direction, std::move(address), std::move(data), [=](std::uint64_t lines) {
                    return cycle == WizardCycle::All ||
                           (lines >> 1 == kind &&
                            (direction == WizardDirection::Both || (lines & 1) == direction));
                }};
    }
    static Question All(TypedValue address = {}, TypedValue data = {}) {
        return Of(WizardCycle::All, WizardDirection::Both, std::move(address), std::move(data));
    }

    const int busByte;
    const int busBits;
    bool isPciX = false;
    std::vector<std::optional<std::uint64_t>>
        commands; // of the transfer to which each sample belongs
};

using enum WizardCycle;
constexpr std::size_t read = WizardDirection::Read;
constexpr std::size_t write = WizardDirection::Write;
constexpr std::size_t both = WizardDirection::Both;

TEST_F(PciWizard, TriggersAndStoresAsChosen) {
    StartPci("pci32", Family::Pci32);
    const TypedValue buffer = Between("1F40000 to 1F40200", 0x1F40000, 0x1F40200);
    const TypedValue device = Is("FEBF0xx0", 0xFEBF0000, 0xFFFFF00F);
    const TypedValue five = Is("xxxxxxx5", 5, 15);
    const TypedValue low = Between("0 to 40000000", 0, 0x40000000);
    Check(All(), All());
    Check(Of(Memory, write), Of(Memory, both));
    Check(Of(Memory, read, Is("100100", 0x100100)), All());
    Check(Of(Memory, both, buffer), Of(Io, both));
    Check(Of(Io, write, Is("3fa", 0x3FA)),
          All(Between("FEBF0000 to FEBFFFFF", 0xFEBF0000, 0xFEBFFFFF)));
    Check(Of(Configuration, read), Of(Memory, write, Any(), five));
    Check(All(Any(), Is("1f40", 0x1F40)), Of(Memory, read, Any(), low));
    Check(Of(Memory, write, Any(), low), Of(Memory, write, device));
    Check(Of(Memory, write, device, five), Of(Memory, both, device, five));
    Check(Of(Memory, write, device, low), Of(Memory, write, device, low));
    Check(Of(Memory, both, buffer, five), Of(Memory, both, buffer, five));
    Check(All(buffer, low), All(buffer, low));
}

class Pci64Wizard : public PciWizard {
protected:
    Pci64Wizard() : PciWizard(0x04, 64) {}
};

TEST_F(Pci64Wizard, ComparesTheWholeBus) {
    StartPci("pci64", Family::Pci64);
    Check(Of(Memory, write, Is("100100", 0x100100)), Of(Memory, both));
    Check(Of(Memory, read, Any(), Between("0 to 4000000000000000", 0, 0x4000000000000000)),
          Of(Memory, write, Any(), Is("xxxxxxxxxxxxxxx5", 5, 15)));
}

class PciXWizard : public PciWizard {
protected:
    PciXWizard() : PciWizard(0x01, 64) { isPciX = true; }
};

TEST_F(PciXWizard, UsesAttributesAndCommandsOfPciX) {
    StartPci("pcix", Family::PciX);
    Check(Of(Memory, read), Of(Memory, write));
    Check(Of(Memory, write, Between("1F40000 to 1F40200", 0x1F40000, 0x1F40200)), All());
    Check(Of(Memory, write, Is("FEBF0xx0", 0xFEBF0000, ~std::uint64_t{0xFF0}),
             Is("xxxxxxxxxxxxxxx5", 5, 15)),
          Of(Memory, both, Any(), Is("xxxxxxxxxxxxxxx5", 5, 15)));
}

/// A bus whose cycles have address and data at the same time.
class VmeWizard : public WizardOverWire {
protected:
    bool Holds(const Question& asked, std::size_t at) const {
        const Record& record = traffic[at];
        return asked.command(GetField(record, writeBit, 1) |
                             (interruptBit == 0 ? 1 : GetField(record, interruptBit, 1)) << 1) &&
               (!asked.address.holds || asked.address.holds(GetField(record, 0, 32))) &&
               (!asked.data.holds || asked.data.holds(GetField(record, 32, 32)));
    }
    void Check(const Question& trigger, const Question& kept) {
        SCOPED_TRACE(std::string(trigger.address.text) + " / " + trigger.data.text + " / " +
                     kept.address.text + " / " + kept.data.text);
        Run(trigger, kept,
            Scan({[&](std::size_t at) { return Holds(trigger, at); }},
                 [&](std::size_t at) { return Holds(kept, at); }));
    }
    /// Lines: WRITE, and above it IACK; both are inactive when 1.
    static Question Of(std::size_t direction, TypedValue address = {}, TypedValue data = {}) {
        return {WizardCycle::Memory, direction, std::move(address), std::move(data),
                [=](std::uint64_t lines) {
                    switch (direction) {
                    case WizardDirection::Read:
                        return lines == 3;
                    case WizardDirection::Write:
                        return lines == 2;
                    case WizardDirection::VmeInterrupt:
                        return (lines & 2) == 0;
                    default:
                        return true;
                    }
                }};
    }

    int writeBit = 78;
    int interruptBit = 95;
};

constexpr std::size_t interrupt = WizardDirection::VmeInterrupt;
constexpr std::size_t all = WizardDirection::VmeAll;

TEST_F(VmeWizard, TriggersAndStoresAsChosen) {
    Start("VMEKite", "vme", Family::Vme);
    const TypedValue region = Between("8000000 to 8002000", 0x8000000, 0x8002000);
    const TypedValue block = Is("FF2003xx", 0xFF200300, 0xFFFFFF00);
    const TypedValue kite = Is("4b495445", 0x4B495445);
    const TypedValue low = Between("0 to 80000000", 0, 0x80000000);
    Check(Of(all), Of(all));
    Check(Of(interrupt), Of(write));
    Check(Of(write, region), Of(read));
    Check(Of(read, block), Of(interrupt));
    Check(Of(all, Any(), kite), Of(all, Any(), kite));
    Check(Of(write, Any(), low), Of(write, Any(), low));
    Check(Of(read, region, kite), Of(all, region));
    Check(Of(write, block, low), Of(all, block));
    Check(Of(all, region, low), Of(read, region, low));
    Check(Of(write, block, kite), Of(write, region, kite));
    Check(Of(interrupt, Any(), kite), Of(all, block, low));
}

class LarkWizard : public VmeWizard {
protected:
    LarkWizard() {
        writeBit = 97;
        interruptBit = 0; // the board does not compare it
    }
};

TEST_F(LarkWizard, HasFourEvents) {
    Start("VMELark", "lark", Family::Lark);
    Check(Of(write), Of(read));
    Check(Of(read, Between("8000000 to 8002000", 0x8000000, 0x8002000)),
          Of(write, Any(), Between("0 to 80000000", 0, 0x80000000)));
}

} // namespace
} // namespace busquill::test
