#include "testsuites/compliance_document.h"

#include "document/hex_fields.h"
#include "platform/text.h"
#include "testsuites/check_list.h"

#include <algorithm>
#include <cstdlib>

namespace busquill {

namespace {

constexpr RecordFileKind fileKind = {"Compliance File", "compliance"};

constexpr const char* vendorKey = "VendorID";
constexpr const char* deviceKey = "DeviceID";
constexpr const char* addressKey = "Address";
constexpr const char* vendorNameKey = "VendorName";
constexpr const char* classKey = "Class";
constexpr std::array<std::string_view, 5> deviceKeys = {vendorKey, deviceKey, addressKey,
                                                        vendorNameKey, classKey};
constexpr const char* testKey = "Test";
constexpr const char* resultKey = "Result";

std::uint32_t ParseHex(const std::string& text) {
    return static_cast<std::uint32_t>(std::strtoll(text.c_str(), nullptr, 16));
}

} // namespace

CComplianceDoc::CComplianceDoc(WorkingDirectory directory, Prompts& prompts)
    : RecordDocument(fileKind, OpenQuote::DropsNextLine, prompts), directory_(std::move(directory)),
      device_(directory_, prompts), readValues_(deviceKeys) {
    selected_.set();
}

bool CComplianceDoc::IsSelected(int index) const noexcept {
    return index >= 0 && index < static_cast<int>(flagCount) &&
           selected_[static_cast<std::size_t>(index)];
}

void CComplianceDoc::Select(int index, bool selected) noexcept {
    if (index >= 0 && index < static_cast<int>(flagCount)) {
        selected_[static_cast<std::size_t>(index)] = selected;
    }
}

void CComplianceDoc::SelectAll(bool selected) noexcept {
    selected ? selected_.set() : selected_.reset();
}

void CComplianceDoc::BeginReading() {
    readValues_.Clear();
    readKeys_.clear();
    readResults_.clear();
}

void CComplianceDoc::TakeRecord(const std::vector<std::string>& fields, TextReader& /*file*/) {
    if (fields[0] == testKey && fields.size() >= 3) {
        const std::string& key = fields[1].empty() ? fields[2] : fields[1];
        if (!key.empty()) {
            readKeys_.push_back(key);
        }
    } else if (fields[0] == resultKey && fields.size() >= 5) {
        readResults_.push_back(
            {TestIdOf(fields[1]), fields[4], OutcomeOf(fields[2]), ParseInt(fields[3])});
    } else {
        readValues_.Take(fields);
    }
}

void CComplianceDoc::EndReading() {
    DeviceIdentity identity;
    const auto value = [this](const char* key) {
        const std::string* found = readValues_.Find(key);
        return found != nullptr ? *found : std::string();
    };
    identity.vendorId = ParseHex(value(vendorKey));
    identity.deviceId = ParseHex(value(deviceKey));
    identity.address = ParseHexAddress(value(addressKey));
    identity.vendorName = value(vendorNameKey);
    identity.className = value(classKey);
    device_.SetIdentity(std::move(identity));
    SelectKeys();
    results_ = std::move(readResults_);
    BeginReading(); // what was kept aside is no longer needed
    deviceFound = false;
    loadedFromFile = true;
    UpdateAllViews(nullptr, hintLoaded);
}

/// The first item of each key. Keys that the check list no longer has are dropped.
void CComplianceDoc::SelectKeys() {
    const CheckList list = LoadCheckList(directory_);
    SelectAll(false);
    for (const std::string& key : readKeys_) {
        const auto item = std::ranges::find(list, key, &CheckItem::Key);
        if (item != list.end()) {
            Select(static_cast<int>(item - list.begin()), true);
        }
    }
}

void CComplianceDoc::WriteRecords(RecordWriter& writer) const {
    const DeviceIdentity& identity = device_.Identity();
    writer.Write({vendorKey, Printf("%04x", identity.vendorId)});
    writer.Write({deviceKey, Printf("%04x", identity.deviceId)});
    writer.Write({addressKey, HexAddressText(identity.address)});
    writer.Write({vendorNameKey, identity.vendorName});
    writer.Write({classKey, identity.className});
    int index = 0;
    for (const CheckItem& item : LoadCheckList(directory_)) {
        if (IsSelected(index++)) {
            writer.Write({testKey, item.ShortForm(), item.Title()});
        }
    }
    for (const CTestResult& test : results_) {
        writer.Write({resultKey, TestIdText(test.testId), OutcomeWord(test.result),
                      std::to_string(test.failCode), test.name});
    }
}

} // namespace busquill
