#pragma once

#include <QAbstractTableModel>

#include <cstdint>

namespace busquill {

class CTesselDoc;

/// Rows about samples of a capture, as a table shows them. They are found in pieces, between
/// events; while a capture is being uploaded, among the samples that have arrived. Main thread.
class CaptureRows : public QAbstractTableModel {
    Q_OBJECT
public:
    struct Column {
        const char* title;
        const char* meaning;
        bool isNumber;
    };

    /// Rows that are not active are kept, but not looked for.
    void SetActive(bool active);
    /// After a change of the document, with the hint for its views.
    virtual void DocumentChanged(int hint);

    /// The index in the document of the first sample of a row.
    [[nodiscard]] virtual std::int64_t SampleOf(int row) const = 0;
    /// The first row that is about a sample; -1 if none is.
    [[nodiscard]] virtual int RowOfSample(std::int64_t sample) const = 0;
    /// A number for a row that stays the same among other rows, and the row of a number or -1.
    [[nodiscard]] virtual std::int64_t KeyOf(int row) const { return SampleOf(row); }
    [[nodiscard]] virtual int RowOfKey(std::int64_t key) const { return RowOfSample(key); }
    [[nodiscard]] virtual Column ColumnAt(int column) const = 0;
    [[nodiscard]] virtual QString Text(int row, int column) const = 0;

    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

signals:
    /// There are other rows, and all views know it.
    void Renewed();
    /// Rows are being looked for, or all have been found.
    void Worked();

protected:
    /// The document outlives the rows.
    explicit CaptureRows(CTesselDoc& document) : document_(document) {}

    [[nodiscard]] CTesselDoc& Document() const { return document_; }
    [[nodiscard]] bool IsActive() const { return isActive_; }
    /// Whether the document has samples that were not taken.
    [[nodiscard]] bool IsOutdated() const { return isOutdated_; }
    /// Takes the samples as they are now, if they are others.
    void FollowSamples();

    /// Stops, until Resume or Follow.
    virtual void Pause() = 0;
    virtual void Resume() = 0;
    /// The samples are not those of the rows any more.
    virtual void Forget() = 0;
    /// Looks for rows in the samples as they are now. False if that has to wait.
    [[nodiscard]] virtual bool Follow() = 0;

private:
    CTesselDoc& document_;
    bool isActive_ = false;
    bool isOutdated_ = true;
};

} // namespace busquill
