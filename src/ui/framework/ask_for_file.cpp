#include "ui/framework/ask_for_file.h"

#include "platform/prompts.h"
#include "platform/working_directory.h"
#include "ui/framework/help_page.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>

namespace busquill {

namespace {

bool HasExtension(const QString& path, const std::string& extension) {
    return !extension.empty() &&
           path.endsWith(QString::fromStdString(extension), Qt::CaseInsensitive);
}

/// The types that can be saved, the usual one first.
std::vector<FileType> TypesOf(const FileQuestion& question) {
    std::vector<FileType> types{{question.filter, question.extension}};
    types.insert(types.end(), question.otherTypes.begin(), question.otherTypes.end());
    return types;
}

/// The extension of the type that the user has chosen.
QString ChosenExtension(const QFileDialog& dialog, const std::vector<FileType>& types) {
    const auto chosen =
        std::ranges::find(types, dialog.selectedNameFilter().toStdString(), &FileType::filter);
    return QString::fromStdString(chosen == types.end() ? types.front().extension
                                                        : chosen->extension);
}

/// Offers the types. When the user turns to another one, the name takes its extension. Qt's own
/// dialog changes the name by itself, that of the desktop may not.
void OfferTypes(QFileDialog& dialog, const std::vector<FileType>& types) {
    QStringList filters;
    for (const FileType& type : types) {
        filters << QString::fromStdString(type.filter);
    }
    dialog.setNameFilters(filters);
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, [&dialog, types] {
        const QString extension = ChosenExtension(dialog, types);
        dialog.setDefaultSuffix(extension.mid(1));
        const QStringList files = dialog.selectedFiles();
        QString name = files.isEmpty() ? QString() : QFileInfo(files.first()).fileName();
        const auto old = std::ranges::find_if(
            types, [&](const FileType& type) { return HasExtension(name, type.extension); });
        if (old != types.end()) {
            name.chop(static_cast<qsizetype>(old->extension.size()));
            dialog.selectFile(name + extension);
        }
    });
}

} // namespace

bool HasTypeOf(const std::string& path, const std::vector<FileType>& types) {
    const QString name = QString::fromStdString(path);
    return std::ranges::any_of(
        types, [&](const FileType& type) { return HasExtension(name, type.extension); });
}

FileQuestion QuestionFor(FileUse use, const std::string& kind, const std::string& extension,
                         const std::string& path) {
    const std::string folder(FolderOf(path));
    return {.use = use,
            .title = (use == FileUse::Save ? "Save " : "Load ") + kind,
            .filter = kind + "(*" + extension + ")",
            .extension = extension,
            .folder = folder,
            .name = path.substr(folder.size())};
}

std::string AskForFile(QWidget* parent, const FileQuestion& question, Prompts& prompts) {
    const bool saves = question.use == FileUse::Save;
    const bool mayBeNew = saves || question.use == FileUse::Name;
    const QString extension = QString::fromStdString(question.extension);
    QFileDialog dialog(parent, QString::fromStdString(question.title), QString(),
                       QString::fromStdString(question.filter));
    SetHelpPage(dialog, "file-types.md");
    dialog.setAcceptMode(saves ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(mayBeNew ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (saves) {
        // Only when saving: otherwise it would be appended to the name of the file to open.
        dialog.setDefaultSuffix(extension.mid(1));
    }
    const std::vector<FileType> types = TypesOf(question);
    if (!question.otherTypes.empty()) {
        OfferTypes(dialog, types);
    }
    if (question.use == FileUse::Name) {
        dialog.setLabelText(QFileDialog::Accept, "&Choose");
    }
    if (question.use == FileUse::Delete) {
        dialog.setLabelText(QFileDialog::Accept, "&Delete");
    }
    if (!question.folder.empty()) {
        dialog.setDirectory(QString::fromStdString(question.folder));
    }
    if (!question.name.empty()) {
        // The name may contain characters that a file name cannot.
        dialog.selectFile(
            QString::fromStdString(question.name).replace('/', '-').replace('\\', '-'));
    }
    if (dialog.exec() != QDialog::Accepted) {
        return "";
    }
    QString path = dialog.selectedFiles().first();
    if (saves && !HasTypeOf(path.toStdString(), types) &&
        !HasExtension(path, question.otherExtension)) {
        // The dialog adds no extension to a name that contains a dot, and has checked that name.
        path += ChosenExtension(dialog, types);
        if (QFile::exists(path) && !prompts.AskYesNo("File already exists. Overwrite?")) {
            return "";
        }
    }
    if (question.use == FileUse::Name && !QFile::exists(path) &&
        QFileInfo(path).suffix().isEmpty()) {
        path += extension;
    }
    return path.toStdString();
}

} // namespace busquill
