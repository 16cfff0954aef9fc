#include "apps/texture-studio/DocumentController.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QSettings>
#include <QWidget>

#include "apps/texture-studio/GraphEditor.h"
#include "host/Document.h"
#include "host/Engine.h"
#include "host/widgets/Manager.h"

namespace {

constexpr const char* kDocumentFilter = "Texture graphs (*.texture.json);;JSON files (*.json)";
constexpr const char* kRecentKey = "recentFiles";
constexpr int kRecentCount = 8;
constexpr const char* kSettingsOrganization = "Texture";
constexpr const char* kSettingsApplication = "Texture Studio";

}  // namespace

DocumentController::DocumentController(const PluginLoader& catalogue, GraphEditor* editor,
                                       QWidget* window)
    : QObject(window),
      mCatalogue(catalogue),
      mEditor(editor),
      mWindow(window),
      mEngine(Engine::Get()) {
    connect(mEditor, &GraphEditor::edited, this, [this] { SetModified(true); });
}

bool DocumentController::Open(const QString& path, QString* error) {
    // A trial load into an engine of its own: a bad document leaves the current graph alone.
    std::string message;
    {
        Engine trial;
        Document probe;
        if (!probe.Load(path.toStdString(), trial, mCatalogue, &message)) {
            if (error != nullptr)
                *error = QString::fromStdString(message);
            return false;
        }
    }
    mEditor->BeginReplace();
    Document document;
    if (!document.Load(path.toStdString(), *mEngine, mCatalogue, &message)) {
        mEditor->EndReplace(nullptr, nullptr);
        if (error != nullptr)
            *error = QString::fromStdString(message);
        return false;
    }
    mPath = QFileInfo(path).absoluteFilePath();
    RememberRecent(mPath);
    mEditor->EndReplace(mEngine->FindNode(document.GetActive()),
                        mEngine->FindNode(document.GetDisplay()));
    emit replaced();
    SetModified(false);
    emit report(tr("Opened %1").arg(path));
    return true;
}

bool DocumentController::Save(const QString& path, QString* error) {
    Document document;
    if (Node* active = Manager::Get()->GetActiveNode())
        document.SetActive(mEngine->GetNodeId(active));
    if (Node* display = Manager::Get()->GetDisplayNode())
        document.SetDisplay(mEngine->GetNodeId(display));
    std::string message;
    if (!document.Save(path.toStdString(), *mEngine, &message)) {
        if (error != nullptr)
            *error = QString::fromStdString(message);
        return false;
    }
    mPath = QFileInfo(path).absoluteFilePath();
    RememberRecent(mPath);
    SetModified(false);
    emit report(tr("Saved %1").arg(path));
    return true;
}

void DocumentController::New() {
    mEditor->BeginReplace();
    mEngine->Clear();
    mPath.clear();
    mEditor->EndReplace(nullptr, nullptr);
    emit replaced();
    SetModified(false);
}

QString DocumentController::GetName() const {
    return mPath.isEmpty() ? tr("Untitled") : QFileInfo(mPath).fileName();
}

void DocumentController::SetModified(bool modified) {
    mModified = modified;
    emit stateChanged();
}

void DocumentController::OpenAfterAsking() {
    if (!MaybeSave())
        return;
    const QString path = QFileDialog::getOpenFileName(mWindow, tr("Open Graph"),
                                                      QFileInfo(mPath).path(), tr(kDocumentFilter));
    if (path.isEmpty())
        return;
    QString error;
    if (!Open(path, &error))
        QMessageBox::warning(mWindow, tr("Open Graph"), error);
}

void DocumentController::SaveOrAsk() {
    if (mPath.isEmpty()) {
        SaveAsAfterAsking();
        return;
    }
    QString error;
    if (!Save(mPath, &error))
        QMessageBox::warning(mWindow, tr("Save Graph"), error);
}

void DocumentController::SaveAsAfterAsking() {
    QString path =
        QFileDialog::getSaveFileName(mWindow, tr("Save Graph As"), mPath, tr(kDocumentFilter));
    if (path.isEmpty())
        return;
    if (!path.endsWith(".json"))
        path += ".texture.json";
    QString error;
    if (!Save(path, &error))
        QMessageBox::warning(mWindow, tr("Save Graph"), error);
}

void DocumentController::NewAfterAsking() {
    if (MaybeSave())
        New();
}

bool DocumentController::MaybeSave() {
    if (!mModified)
        return true;
    const auto answer = QMessageBox::question(
        mWindow, tr("Unsaved Changes"), tr("The graph has changed. Save it first?"),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Cancel)
        return false;
    if (answer == QMessageBox::Save) {
        SaveOrAsk();
        return !mModified;
    }
    return true;
}

QStringList DocumentController::GetRecentFiles() const {
    QStringList existing;
    const QSettings settings(kSettingsOrganization, kSettingsApplication);
    for (const QString& path : settings.value(kRecentKey).toStringList())
        if (QFileInfo::exists(path))
            existing.append(path);
    return existing;
}

void DocumentController::RememberRecent(const QString& path) {
    QSettings settings(kSettingsOrganization, kSettingsApplication);
    QStringList recent = settings.value(kRecentKey).toStringList();
    recent.removeAll(path);
    recent.prepend(path);
    while (recent.size() > kRecentCount)
        recent.removeLast();
    settings.setValue(kRecentKey, recent);
}

void DocumentController::OpenRecentAfterAsking(const QString& path) {
    if (!MaybeSave())
        return;
    QString error;
    if (!Open(path, &error))
        QMessageBox::warning(mWindow, tr("Open Graph"), error);
}
