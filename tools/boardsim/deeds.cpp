#include "deeds.h"

#include <algorithm>
#include <cstdio>

namespace boardsim {

namespace {

std::unique_ptr<Doer> MakeDoer(Family family, std::uint32_t seed) {
    switch (family) {
    case Family::Pci32:
        return MakePciDoer(seed, false, false);
    case Family::Pci64:
        return MakePciDoer(seed, true, false);
    case Family::PciX:
        return MakePciDoer(seed, true, true);
    case Family::Vme:
        return MakeVmeDoer(seed, false);
    case Family::Lark:
        return MakeVmeDoer(seed, true);
    case Family::Vsb:
        return MakeVsbDoer(seed);
    case Family::ConnectorP2:
    case Family::ConnectorP0:
        break;
    }
    return nullptr;
}

/// The part of the samples that is in the file.
struct Shown {
    std::size_t first = 0;
    std::size_t end = 0;
    std::vector<bool> missing; // by place

    [[nodiscard]] bool Has(std::size_t place) const {
        return place >= first && place < end && !missing[place];
    }
    [[nodiscard]] bool HasAll(std::size_t from, std::size_t to) const {
        for (std::size_t place = from; place <= to; ++place) {
            if (!Has(place)) {
                return false;
            }
        }
        return true;
    }
};

/// Whether samples that begin at a place begin with the second half of a dual address.
bool IsSecondHalf(const std::vector<Deed>& deeds, std::size_t place) {
    return std::any_of(deeds.begin(), deeds.end(),
                       [&](const Deed& deed) { return deed.secondHalf == place; });
}

/// Writes down what the samples show of the deeds.
class DeedTable {
public:
    DeedTable(const Doer& doer, const Shown& shown, std::size_t trigger, Family family)
        : doer_(doer), shown_(shown), trigger_(trigger),
          hasClock_(family != Family::Vme && family != Family::Lark && family != Family::Vsb),
          hasChecker_(family != Family::Lark && family != Family::Vsb),
          times_(doer.Samples().size()), rows_(doer.Deeds().size()) {
        std::uint64_t time = 0;
        bool isFirst = true;
        for (std::size_t i = shown.first; i < shown.end; ++i) {
            if (shown.Has(i)) {
                time += isFirst ? 0 : doer.Samples()[i].nanoseconds;
                times_[i] = time;
                isFirst = false;
            }
        }
    }

    [[nodiscard]] std::string Text() {
        text_ = "number,sample,time,command,address,words,bytes,wait,initiatorWait,latency,end,gap,"
                "tag,splitRequest,findings,data\n";
        for (std::size_t i = 0; i < doer_.Deeds().size(); ++i) {
            AddRuns(i);
        }
        return text_;
    }

private:
    /// A line for each run of samples of a deed that is in the file.
    void AddRuns(std::size_t index) {
        const Deed& deed = doer_.Deeds()[index];
        for (std::size_t at = deed.first; at <= deed.last; ++at) {
            if (!shown_.Has(at)) {
                continue;
            }
            std::size_t last = at;
            while (last < deed.last && shown_.Has(last + 1)) {
                ++last;
            }
            const bool begins =
                at == deed.first && ((at > 0 && shown_.Has(at - 1)) || !doer_.NeedsSampleBefore());
            AddRow(index, at, last, begins && deed.commandToldBy <= last);
            at = last;
        }
    }

    void AddRow(std::size_t index, std::size_t first, std::size_t last, bool begins) {
        const Deed& deed = doer_.Deeds()[index];
        const bool ends = last == deed.last && (deed.showsItsEnd || shown_.Has(last + 1));
        const bool isCut = last + 1 == shown_.end && !ends;
        ++number_;
        Cell(std::to_string(number_));
        Cell(std::to_string(static_cast<std::int64_t>(first - shown_.first) -
                            static_cast<std::int64_t>(trigger_)));
        Cell(std::to_string(times_[first]));
        const bool isModified = deed.modifies && deed.modifies->sample <= last;
        Cell(!begins ? "" : isModified ? deed.modifies->command : deed.command);
        Cell(begins && deed.addressToldBy <= last ? deed.address : "");
        AddNumbers(deed, first, last, begins);
        if (begins) {
            rows_[index] = ends ? number_ : 0;
            const bool isEndTold = ends || (deed.endToldBy && *deed.endToldBy <= last);
            Cell(isEndTold ? deed.end : isCut ? "cut-off" : "unknown");
        } else {
            Cell(isCut || first == shown_.first ? "cut-off" : "unknown");
        }
        const bool follows = before_ && shown_.HasAll(*before_, first);
        Cell(follows ? std::to_string(times_[first] - times_[*before_]) : "");
        before_ = last;
        const bool isTagged = begins && deed.tag && deed.tagSample <= last;
        Cell(isTagged ? std::to_string(*deed.tag) : "");
        const bool isPaired = isTagged && deed.request && rows_[*deed.request] != 0 &&
                              shown_.HasAll(doer_.Deeds()[*deed.request].first, deed.tagSample);
        Cell(isPaired ? std::to_string(rows_[*deed.request]) : "");
        const auto& samples = doer_.Samples();
        const auto findings =
            std::count_if(samples.begin() + static_cast<std::ptrdiff_t>(first),
                          samples.begin() + static_cast<std::ptrdiff_t>(last) + 1,
                          [](const Doer::Sample& sample) { return sample.hasFinding; });
        Cell(hasChecker_ ? std::to_string(findings) : "");
        for (const Deed::Transfer& each : deed.transfers) {
            if (begins && each.sample <= last) {
                text_ += &each == &deed.transfers.front() ? "" : " ";
                text_ += each.settledBy <= last ? each.text : each.early;
            }
        }
        text_ += '\n';
    }

    /// Words, bytes, waits and the latency.
    void AddNumbers(const Deed& deed, std::size_t first, std::size_t last, bool begins) {
        std::uint64_t words = 0;
        std::uint64_t bytes = 0;
        std::uint64_t wait = begins ? UpTo(deed.waits, last) : 0;
        std::string latency;
        for (const Deed::Transfer& each : deed.transfers) {
            if (!begins || each.sample > last) {
                break;
            }
            latency = words == 0 ? std::to_string(times_[each.sample] - times_[first]) : latency;
            ++words;
            bytes += each.bytes;
            wait += each.strobe ? times_[each.sample] - times_[*each.strobe] : 0;
        }
        Cell(std::to_string(words));
        Cell(std::to_string(bytes));
        Cell(std::to_string(wait));
        const std::uint64_t initiatorWait = begins ? UpTo(deed.initiatorWaits, last) : 0;
        Cell(hasClock_ ? std::to_string(initiatorWait) : "");
        Cell(latency);
    }

    static std::uint64_t UpTo(const std::vector<std::size_t>& samples, std::size_t last) {
        return static_cast<std::uint64_t>(std::count_if(
            samples.begin(), samples.end(), [&](std::size_t sample) { return sample <= last; }));
    }

    void Cell(const std::string& text) { text_ += text + ","; }

    const Doer& doer_;
    const Shown& shown_;
    std::size_t trigger_;
    bool hasClock_;                    // waits of the initiator are counted in clocks
    bool hasChecker_;                  // the board checks the bus
    std::vector<std::uint64_t> times_; // by place
    std::vector<std::size_t> rows_;    // numbers of the deeds that are told whole, or 0
    std::size_t number_ = 0;
    std::optional<std::size_t> before_; // the last sample of the row before
    std::string text_;
};

} // namespace

std::string HexText(std::uint64_t value, unsigned bytes, unsigned lanes) {
    std::string text;
    for (unsigned lane = bytes; lane-- > 0;) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X",
                      static_cast<unsigned>(value >> (8 * lane) & 0xFF));
        text += (lanes >> lane & 1) != 0 ? digits : "--";
    }
    return text;
}

std::string AddressText(std::uint64_t value, unsigned digits) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%0*llX", static_cast<int>(digits),
                  static_cast<unsigned long long>(value));
    return text;
}

std::size_t Doer::Put(Record record, unsigned nanoseconds, unsigned rule) {
    SetField(record, bitTime, timeBits, TimeField(nanoseconds));
    SetField(record, bitRule, 8, rule);
    samples_.push_back({record, nanoseconds, rule != 0});
    return samples_.size() - 1;
}

DeedRecording RecordDeeds(Family family, std::uint32_t seed, std::size_t count, std::size_t trigger,
                          unsigned gaps) {
    constexpr std::size_t lead = 200; // the capture begins somewhere after so many samples
    constexpr std::size_t longestGap = 20;
    const std::unique_ptr<Doer> doer = MakeDoer(family, seed);
    std::mt19937 random(seed + 1);
    Shown shown;
    shown.first = lead + random() % lead;
    while (doer->Samples().size() < shown.first + count + 2 * lead) {
        doer->Act();
    }
    if (IsSecondHalf(doer->Deeds(), shown.first)) {
        ++shown.first;
    }
    shown.end = shown.first + count;
    shown.missing.resize(doer->Samples().size());
    for (unsigned gap = 0; gap < gaps && count > 3 * longestGap; ++gap) {
        const std::size_t from = shown.first + longestGap + random() % (count - 3 * longestGap);
        std::size_t to = from + random() % longestGap;
        to += IsSecondHalf(doer->Deeds(), to + 1) ? 1 : 0;
        for (std::size_t place = from; place <= to; ++place) {
            shown.missing[place] = true;
        }
    }
    DeedRecording recording;
    recording.table = DeedTable(*doer, shown, trigger, family).Text();
    for (std::size_t place = shown.first; place < shown.end; ++place) {
        recording.samples.push_back(doer->Samples()[place].record);
        recording.missing.push_back(shown.missing[place]);
    }
    return recording;
}

} // namespace boardsim
