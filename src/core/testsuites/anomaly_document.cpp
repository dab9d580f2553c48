#include "testsuites/anomaly_document.h"

namespace busquill {

namespace {

/// These files have always had the type of a compliance test.
constexpr RecordFileKind fileKind = {"Compliance File", "anomaly"};
constexpr std::size_t flagCount = 200;

} // namespace

CAnomalyDetectionDoc::CAnomalyDetectionDoc(TableInUse tableInUse, Prompts& prompts)
    : CheckTableDocument(fileKind, flagCount, std::move(tableInUse), prompts) {}

void CAnomalyDetectionDoc::AddResult(int check) {
    if (results_.size() < resultLimit) {
        results_.push_back(check);
    }
}

} // namespace busquill
