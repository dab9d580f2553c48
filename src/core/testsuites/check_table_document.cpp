#include "testsuites/check_table_document.h"

namespace busquill {

void CheckTableDocument::WriteRecords(RecordWriter& writer) const {
    for (int index = 0; const CheckTableRow& row : Table()) {
        if (IsEnabled(index++)) {
            writer.Write({testKey, row.text});
        }
    }
}

} // namespace busquill
