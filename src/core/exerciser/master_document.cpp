#include "exerciser/master_document.h"

#include "document/hex_fields.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr RecordFileKind fileKind = {"Master File", "master"};

constexpr std::array<std::string_view, 17> keys = {
    "AddressSpace", "AddressSize",   "AddressStart",    "AddressEnd",      "DataSize",
    "DataCycle",    "DataType",      "DataValue",       "DataFilename",    "AttrTag",
    "AttrBusNum",   "AttrDeviceNum", "AttrFunctionNum", "AddressModifier", "BusRequestLevel",
    "Command",      "Repeat"};

constexpr int requestLevelBits = 8;

/// Unlike other lists: what is not one of the smaller sizes, and a missing line, is "64 bit". Files
/// without the line depend on it.
std::int32_t AddressSizeOf(const std::string* text) {
    const auto smaller = std::span(exerciserSizes).first(3);
    const auto found = text == nullptr ? smaller.end() : std::ranges::find(smaller, *text);
    return static_cast<std::int32_t>(found - smaller.begin());
}

/// A command that only other boards have leaves nothing selected; an unknown one reads.
std::int32_t CommandOf(const std::string& text, const MasterFamily& family) {
    return CommandOn(family, IndexInList(masterCommands, text));
}

} // namespace

CMasterDoc::CMasterDoc(std::function<BoardTraits()> board, Prompts& prompts)
    : RecordDocument(fileKind, OpenQuote::DropsNextLine, prompts), board_(std::move(board)),
      family_(&MasterFamilyOf(board_())), values_(keys) {}

void CMasterDoc::FollowBoard() {
    const MasterFamily& now = MasterFamilyOf(board_());
    if (&now == family_) {
        return;
    }
    ChangeFamily(form_, *family_, now);
    family_ = &now;
    UpdateAllViews(nullptr, hintLoaded);
}

void CMasterDoc::BeginReading() {
    values_.Clear();
}

void CMasterDoc::TakeRecord(const std::vector<std::string>& fields, TextReader& /*file*/) {
    values_.Take(fields);
}

void CMasterDoc::EndReading() {
    const MasterFamily& family = Family();
    if (!family.addressModifier) {
        values_.Apply("AddressSpace", family.spaces, form_.addressSpace);
    }
    form_.addressSize = AddressSizeOf(values_.Find("AddressSize"));
    values_.Apply("AddressStart", form_.addressStart);
    values_.Apply("AddressEnd", form_.addressEnd);
    values_.Apply("DataSize", exerciserSizes, form_.dataSize);
    values_.Apply("DataCycle", masterCycles, form_.dataCycle);
    values_.Apply("DataType", masterDataTypes, form_.dataType);
    values_.Apply("DataValue", form_.dataValue);
    values_.Apply("DataFilename", form_.dataFilename);
    if (family.attributes) {
        for (const MasterAttribute& attribute : masterAttributes) {
            values_.Apply(attribute.key, attribute.bits, form_.*attribute.value);
        }
    }
    if (family.addressModifier) {
        values_.Apply("AddressModifier", addressModifierBits, form_.addressModifier);
        values_.Apply("BusRequestLevel", requestLevelBits, form_.busRequestLevel);
    }
    if (const std::string* command = values_.Find("Command")) {
        form_.command = CommandOf(*command, family);
    }
    values_.Apply("Repeat", form_.repeat);
    UpdateAllViews(nullptr, hintLoaded);
}

void CMasterDoc::WriteRecords(RecordWriter& writer) const {
    const MasterFamily& family = Family();
    writer.Write({"AddressSpace", TextInList(family.spaces, form_.addressSpace)});
    writer.Write({"AddressSize", TextInList(exerciserSizes, form_.addressSize)});
    writer.Write({"AddressStart", HexAddressText(form_.addressStart)});
    writer.Write({"AddressEnd", HexAddressText(form_.addressEnd)});
    writer.Write({"DataSize", TextInList(exerciserSizes, form_.dataSize)});
    writer.Write({"DataCycle", TextInList(masterCycles, form_.dataCycle)});
    writer.Write({"DataType", TextInList(masterDataTypes, form_.dataType)});
    writer.Write({"DataValue", HexAddressText(form_.dataValue)});
    writer.Write({"DataFilename", form_.dataFilename});
    if (family.attributes) {
        for (const MasterAttribute& attribute : masterAttributes) {
            writer.Write({attribute.key, HexByteText(form_.*attribute.value)});
        }
    }
    if (family.addressModifier) {
        writer.Write({"AddressModifier", HexByteText(form_.addressModifier)});
        writer.Write({"BusRequestLevel", HexByteText(form_.busRequestLevel)});
    }
    writer.Write({"Command", TextInList(family.commands, form_.command)});
    writer.Write({"Repeat", form_.repeat});
}

} // namespace busquill
