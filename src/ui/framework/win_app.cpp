#include "ui/framework/win_app.h"

#include "document/document.h"
#include "platform/prompts.h"
#include "platform/settings.h"
#include "platform/text.h"
#include "ui/framework/mdi_child.h"
#include "ui/framework/wait_cursor.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMdiArea>

#include <algorithm>

namespace busquill {

namespace {

constexpr int recentFileCount = 4;
constexpr auto recentSection = "Recent File List";

std::string RecentKey(int i) {
    return Printf("File%d", i + 1);
}

bool SameFile(const std::string& a, const std::string& b) {
    return !a.empty() &&
           QFileInfo(QString::fromStdString(a)) == QFileInfo(QString::fromStdString(b));
}

} // namespace

QString MenuText(QString name) {
    return name.replace('&', "&&");
}

QStringList MenuNamesOf(const QStringList& paths) {
    QStringList names;
    for (const QString& path : paths) {
        names << QFileInfo(path).fileName();
    }
    QStringList shown;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const bool isAlone = names.count(names[i]) == 1;
        const QString text =
            isAlone ? names[i] : names[i] + " (" + QFileInfo(paths[i]).path() + ")";
        shown << MenuText(text);
    }
    return shown;
}

void CWinApp::AddDocTemplate(std::unique_ptr<CMultiDocTemplate> added) {
    added->saved = [this](const std::string& path) { AddRecentFile(path); };
    templates_.push_back(std::move(added));
}

CMultiDocTemplate* CWinApp::TemplateOf(const CDocument& document) const {
    for (const auto& each : templates_) {
        for (const auto& owned : each->Documents()) {
            if (owned.get() == &document) {
                return each.get();
            }
        }
    }
    return nullptr;
}

CMultiDocTemplate* CWinApp::TemplateNamed(std::string_view documentName) const {
    for (const auto& each : templates_) {
        if (each->Strings().documentName == documentName) {
            return each.get();
        }
    }
    return nullptr;
}

CDocument* CWinApp::OpenDocumentFile(const std::string& path) {
    CMultiDocTemplate* fitting = nullptr;
    for (const auto& each : templates_) {
        for (CMDIChildWnd* frame : each->Frames()) {
            if (frame->GetDocument().ShowsItsFile() &&
                SameFile(frame->GetDocument().GetPathName(), path)) {
                frame->mdiArea()->setActiveSubWindow(frame);
                return &frame->GetDocument();
            }
        }
        if (each->IsAvailable() && ToLower(path).ends_with(each->Strings().extension)) {
            fitting = each.get();
        }
    }
    if (fitting == nullptr) {
        prompts_.Message(Printf("%s\nThe program cannot open files of this kind.", path.c_str()));
        return nullptr;
    }
    const WaitCursor wait;
    CDocument* document = fitting->OpenDocumentFile(path);
    if (document != nullptr) {
        AddRecentFile(path);
    }
    return document;
}

void CWinApp::OnFileOpen(QWidget* parent) {
    QStringList filters;
    for (const auto& each : templates_) {
        if (each->IsAvailable()) {
            filters << QString::fromStdString(each->Strings().filterName);
        }
    }
    filters << "All Files (*)";
    const QString path =
        QFileDialog::getOpenFileName(parent, "Open", QString(), filters.join(";;"));
    if (!path.isEmpty()) {
        OpenDocumentFile(path.toStdString());
    }
}

bool CWinApp::SaveAllModified() {
    return std::all_of(templates_.begin(), templates_.end(), [](const auto& each) {
        return std::all_of(each->Documents().begin(), each->Documents().end(),
                           [&](const auto& document) { return each->SaveModified(*document); });
    });
}

void CWinApp::DocumentChanged() {
    for (const auto& each : Templates()) {
        for (const auto& document : each->Documents()) {
            document->UpdateAllViews(nullptr);
        }
    }
}

QStringList CWinApp::RecentFiles() const {
    QStringList files;
    for (int i = 0; i < recentFileCount; ++i) {
        const std::string path = settings_.GetProfileString(recentSection, RecentKey(i), "");
        if (!path.empty()) {
            files << QString::fromStdString(path);
        }
    }
    return files;
}

void CWinApp::AddRecentFile(const std::string& path) {
    QStringList files = RecentFiles();
    const QString added = QFileInfo(QString::fromStdString(path)).absoluteFilePath();
    files.removeAll(added);
    files.prepend(added);
    for (int i = 0; i < recentFileCount; ++i) {
        settings_.WriteProfileString(recentSection, RecentKey(i),
                                     i < files.size() ? files[i].toStdString() : "");
    }
}

} // namespace busquill
