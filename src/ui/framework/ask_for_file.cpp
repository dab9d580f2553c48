#include "ui/framework/ask_for_file.h"

#include "platform/prompts.h"
#include "platform/working_directory.h"
#include "ui/framework/help_page.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>

namespace busquill {

namespace {

bool HasExtension(const QString& path, const std::string& extension) {
    return !extension.empty() &&
           path.endsWith(QString::fromStdString(extension), Qt::CaseInsensitive);
}

} // namespace

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
    if (saves && !HasExtension(path, question.extension) &&
        !HasExtension(path, question.otherExtension)) {
        // The dialog adds no extension to a name that contains a dot, and has checked that name.
        path += extension;
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
