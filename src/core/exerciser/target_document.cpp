#include "exerciser/target_document.h"

#include "document/hex_fields.h"

namespace busquill {

namespace {

constexpr RecordFileKind fileKind = {"Target File", "target"};

constexpr std::array<std::string_view, 8> keys = {"AddressSpace", "AddressSize",     "AddressStart",
                                                  "AddressEnd",   "AddressModifier", "DataSize",
                                                  "DataType",     "DataValue"};

} // namespace

CTargetDoc::CTargetDoc(std::function<BoardTraits()> board, Prompts& prompts)
    : RecordDocument(fileKind, OpenQuote::DropsNextLine, prompts), board_(std::move(board)),
      family_(&TargetFamilyOf(board_())), values_(keys) {}

void CTargetDoc::FollowBoard() {
    const TargetFamily& now = TargetFamilyOf(board_());
    if (&now == family_) {
        return;
    }
    ChangeFamily(form_, *family_, now);
    family_ = &now;
    UpdateAllViews(nullptr, hintLoaded);
}

void CTargetDoc::BeginReading() {
    values_.Clear();
}

void CTargetDoc::TakeRecord(const std::vector<std::string>& fields, TextReader& /*file*/) {
    values_.Take(fields);
}

void CTargetDoc::EndReading() {
    const TargetFamily& family = Family();
    if (!family.addressModifier) {
        values_.Apply("AddressSpace", family.spaces, form_.addressSpace);
    }
    values_.Apply("AddressSize", targetLengths, form_.busLength);
    values_.Apply("AddressStart", form_.addressStart);
    values_.Apply("AddressEnd", form_.addressEnd);
    values_.Apply("DataSize", exerciserSizes, form_.dataSize);
    values_.Apply("DataType", targetDataTypes, form_.dataType);
    values_.Apply("DataValue", form_.dataValue);
    if (family.addressModifier) {
        values_.Apply("AddressModifier", addressModifierBits, form_.addressModifier);
    }
    UpdateAllViews(nullptr, hintLoaded);
}

void CTargetDoc::WriteRecords(RecordWriter& writer) const {
    const TargetFamily& family = Family();
    writer.Write({"AddressSpace", TextInList(family.spaces, form_.addressSpace)});
    writer.Write({"AddressSize", TextInList(targetLengths, form_.busLength)});
    writer.Write({"AddressStart", HexAddressText(form_.addressStart)});
    writer.Write({"AddressEnd", HexAddressText(form_.addressEnd)});
    if (family.addressModifier) {
        writer.Write({"AddressModifier", HexByteText(form_.addressModifier)});
    }
    writer.Write({"DataSize", TextInList(exerciserSizes, form_.dataSize)});
    // The target has no cycle, and the name of its data file is not kept; their keys are.
    writer.Write({"DataCycle", ""});
    writer.Write({"DataType", TextInList(targetDataTypes, form_.dataType)});
    writer.Write({"DataValue", HexAddressText(form_.dataValue)});
    writer.Write({"DataFilename", ""});
}

} // namespace busquill
