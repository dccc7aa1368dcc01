// The command line: what was said, the question that stands with its keywords to click, and what is typed. It
// is where the editor's dialogue goes to while there is a window.
#pragma once

#include "host/ed/console.h"
#include "host/ed/input.h"

#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QStringList>
#include <QWidget>
#include <functional>

namespace app {

/// A word that can answer a question: how it is shown, and what is typed for it.
struct PromptKeyword {
    QString shown;
    QString typed;
};
/// The keywords between the brackets of a prompt: "[闭合(C)/放弃(U)]".
std::vector<PromptKeyword> keywordsOf(const QString& prompt);
/// The prompt as rich text, its keywords links to what is typed for them.
QString linkedPrompt(const QString& prompt);

class CommandLine final : public QWidget, public host::ConsoleSink {
    Q_DECLARE_TR_FUNCTIONS(CommandLine)

public:
    explicit CommandLine(QWidget* parent = nullptr);
    ~CommandLine() override;

    /// Text that ends an answer, as it would be typed, with its line end.
    std::function<void(const QString&)> submitted;
    std::function<void()> cancelled;
    /// What stands in the edit changed.
    std::function<void(const QString&)> edited;

    /// How the next answer is read. The prompt is what the editor wrote last.
    void setRequest(const host::InputRequest* request);
    /// The question that stands, without its line's beginning.
    QString prompt() const { return mPartial.trimmed(); }
    QString text() const { return mEdit->text(); }
    void clearText() { mEdit->clear(); }
    /// A line of the program's own, above the question that stands; not the same twice in a row.
    void tell(const QString& line);
    /// Ends what is typed, as Enter would.
    void submit();
    /// A key that went to another part of the window; true when it meant something here.
    bool takeKey(QKeyEvent& event);
    void setHistoryVisible(bool visible);
    /// Everything said, for the text window.
    QString history() const { return mHistory->toPlainText(); }
    QPlainTextEdit& historyView() { return *mHistory; }
    QSize sizeHint() const override { return {600, 96}; }

    // ConsoleSink.
    void write(std::wstring_view text) override;
    void diagnostic(std::wstring_view) override {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void append(const QString& line);
    void showPrompt();
    void recall(int step);
    void suggest();
    void placeSuggestions();
    void takeSuggestion();
    bool spaceEnds() const;
    QStringList candidates(const QString& begun) const;

    QPlainTextEdit* mHistory;
    QLabel* mPrompt;
    QLineEdit* mEdit;
    QListWidget* mSuggestions;
    QString mPartial;   ///< of the line being written
    QString mTold;      ///< last of the program's own lines, until something else is said
    QStringList mTyped; ///< for the arrow keys
    qsizetype mRecalled = 0;
    bool mAtCommandPrompt = true;
    bool mHasRequest = false;
    host::ReadMode mMode = host::ReadMode::token;
};

} // namespace app
