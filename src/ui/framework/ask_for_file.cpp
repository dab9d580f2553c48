#include "ui/framework/ask_for_file.h"

#include "platform/prompts.h"

#include <QFile>
#include <QFileDialog>

namespace busquill {

std::string AskForFile(QWidget* parent, const FileQuestion& question, Prompts& prompts) {
    const bool saves = question.use == FileUse::Save;
    const QString extension = QString::fromStdString(question.extension);
    QFileDialog dialog(parent, QString::fromStdString(question.title), QString(),
                       QString::fromStdString(question.filter));
    dialog.setAcceptMode(saves ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(saves ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (saves) {
        dialog.setDefaultSuffix(extension.mid(1)); // elsewhere it would be added to what is typed
    }
    if (question.use == FileUse::Delete) {
        dialog.setLabelText(QFileDialog::Accept, "&Delete");
    }
    if (!question.folder.empty()) {
        dialog.setDirectory(QString::fromStdString(question.folder));
    }
    if (!question.name.empty()) {
        // A name may hold what a file's name cannot.
        dialog.selectFile(
            QString::fromStdString(question.name).replace('/', '-').replace('\\', '-'));
    }
    if (dialog.exec() != QDialog::Accepted) {
        return "";
    }
    QString path = dialog.selectedFiles().first();
    if (saves && !path.endsWith(extension, Qt::CaseInsensitive)) {
        path +=
            extension; // such as to a name with a point, of which the dialog has asked as it was
        if (QFile::exists(path) && !prompts.AskYesNo("File already exists. Overwrite?")) {
            return "";
        }
    }
    return path.toStdString();
}

} // namespace busquill
