#include "app/console/commandline.h"

#include "host/ed/accmd.h"
#include "host/ed/lisphook.h"
#include "host/ed/sysvars.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QRegularExpression>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>

namespace app {
namespace {

constexpr int mostLines = 4000;
constexpr int mostSuggestions = 9;
constexpr qsizetype mostRecalled = 200;

bool isLispBegun(const QString& text) {
    return text.startsWith(QLatin1Char('(')) || text.startsWith(QLatin1Char('!'));
}

/// Parentheses pair outside of strings.
bool isLispWhole(const QString& text) {
    if (!text.startsWith(QLatin1Char('('))) {
        return true;
    }
    host::LispTextScanner scanner;
    const std::wstring characters = text.toStdWString();
    return std::any_of(characters.begin(), characters.end(), [&](wchar_t c) { return scanner.feed(c); });
}

QString typedFor(const QString& keyword) {
    static const QRegularExpression letters(QStringLiteral("\\(([A-Za-z0-9+\\-]+)\\)\\s*$"));
    const QRegularExpressionMatch match = letters.match(keyword);
    return match.hasMatch() ? match.captured(1) : keyword.trimmed();
}

/// Places of the bracketed lists of a prompt.
std::vector<std::pair<qsizetype, qsizetype>> lists(const QString& prompt) {
    std::vector<std::pair<qsizetype, qsizetype>> found;
    for (qsizetype open = prompt.indexOf(QLatin1Char('[')); open >= 0;
         open = prompt.indexOf(QLatin1Char('['), open + 1)) {
        const qsizetype close = prompt.indexOf(QLatin1Char(']'), open);
        if (close > open) {
            found.emplace_back(open + 1, close);
        }
    }
    return found;
}

} // namespace

std::vector<PromptKeyword> keywordsOf(const QString& prompt) {
    std::vector<PromptKeyword> keywords;
    for (const auto& [from, to] : lists(prompt)) {
        for (const QString& word : prompt.mid(from, to - from).split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
            keywords.push_back({word.trimmed(), typedFor(word)});
        }
    }
    return keywords;
}

QString linkedPrompt(const QString& prompt) {
    QString rich;
    qsizetype done = 0;
    for (const auto& [from, to] : lists(prompt)) {
        rich += prompt.mid(done, from - done).toHtmlEscaped();
        bool isFirst = true;
        for (const QString& word : prompt.mid(from, to - from).split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
            rich += isFirst ? QString() : QStringLiteral("/");
            rich += QStringLiteral("<a href=\"%1\" style=\"color:#6cb6ff;text-decoration:none\">%2</a>")
                        .arg(typedFor(word).toHtmlEscaped(), word.trimmed().toHtmlEscaped());
            isFirst = false;
        }
        done = to;
    }
    return rich + prompt.mid(done).toHtmlEscaped();
}

CommandLine::CommandLine(QWidget* parent)
    : QWidget(parent), mHistory(new QPlainTextEdit(this)), mPrompt(new QLabel(this)),
      mEdit(new QLineEdit(this)), mSuggestions(new QListWidget(this)) {
    setObjectName(QStringLiteral("commandLine"));
    mHistory->setReadOnly(true);
    mHistory->setFrameShape(QFrame::NoFrame);
    mHistory->setMaximumBlockCount(mostLines);
    mHistory->setFocusPolicy(Qt::ClickFocus);
    mHistory->setObjectName(QStringLiteral("history"));
    mPrompt->setTextFormat(Qt::RichText);
    mPrompt->setTextInteractionFlags(Qt::LinksAccessibleByMouse);
    mEdit->setFrame(false);
    mEdit->setObjectName(QStringLiteral("commandEdit"));
    mSuggestions->setFocusPolicy(Qt::NoFocus);
    mSuggestions->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    mSuggestions->setObjectName(QStringLiteral("suggestions"));
    mSuggestions->hide();
    auto* line = new QHBoxLayout;
    line->setContentsMargins(6, 2, 6, 3);
    line->setSpacing(4);
    line->addWidget(mPrompt);
    line->addWidget(mEdit, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(mHistory, 1);
    layout->addLayout(line);
    mEdit->installEventFilter(this);
    mHistory->installEventFilter(this);
    connect(mPrompt, &QLabel::linkActivated, this, [this](const QString& keyword) {
        mEdit->setText(keyword);
        submit();
    });
    connect(mEdit, &QLineEdit::textChanged, this, [this](const QString& text) {
        suggest();
        if (edited) {
            edited(text);
        }
    });
    connect(mSuggestions, &QListWidget::itemClicked, this, [this] {
        takeSuggestion();
        submit();
    });
}

CommandLine::~CommandLine() {
    host::console().setSink(nullptr);
}

void CommandLine::setRequest(const host::InputRequest* request) {
    mHasRequest = request != nullptr;
    if (request != nullptr) {
        mAtCommandPrompt = request->atCommandPrompt;
        mMode = request->mode;
        showPrompt();
        suggest();
    }
}

void CommandLine::write(std::wstring_view text) {
    mPartial += QString::fromWCharArray(text.data(), static_cast<qsizetype>(text.size()));
    mPartial.remove(QLatin1Char('\r'));
    const qsizetype last = mPartial.lastIndexOf(QLatin1Char('\n'));
    if (last >= 0) {
        append(mPartial.left(last));
        mPartial.remove(0, last + 1);
    }
    showPrompt();
}

void CommandLine::tell(const QString& line) {
    if (line != mTold) {
        append(line);
        mTold = line;
    }
}

void CommandLine::append(const QString& line) {
    mTold.clear();
    mHistory->appendPlainText(line);
    mHistory->verticalScrollBar()->setValue(mHistory->verticalScrollBar()->maximum());
}

void CommandLine::showPrompt() {
    mPrompt->setText(linkedPrompt(mPartial.trimmed()));
}

bool CommandLine::spaceEnds() const {
    const QString text = mEdit->text();
    const bool isInQuotes = text.startsWith(QLatin1Char('"')) && text.count(QLatin1Char('"')) % 2 != 0;
    return mMode == host::ReadMode::token && !isInQuotes && !isLispBegun(text);
}

void CommandLine::submit() {
    const QString text = mEdit->text();
    if (!isLispWhole(text)) {
        mEdit->insert(QStringLiteral(" "));
        return;
    }
    if (!text.trimmed().isEmpty() && (mTyped.isEmpty() || mTyped.last() != text)) {
        mTyped.append(text);
        if (mTyped.size() > mostRecalled) {
            mTyped.removeFirst();
        }
    }
    mRecalled = mTyped.size();
    mSuggestions->hide();
    mEdit->clear();
    if (submitted) {
        submitted(text + QLatin1Char('\n'));
    }
}

void CommandLine::recall(int step) {
    mRecalled = std::clamp<qsizetype>(mRecalled + step, 0, mTyped.size());
    mEdit->setText(mRecalled < mTyped.size() ? mTyped[mRecalled] : QString());
    mSuggestions->hide();
}

// Suggestions.

QStringList CommandLine::candidates(const QString& begun) const {
    QStringList found;
    const auto offer = [&](const QString& name) {
        if (name.startsWith(begun, Qt::CaseInsensitive) && !found.contains(name, Qt::CaseInsensitive)) {
            found.append(name);
        }
    };
    if (!mAtCommandPrompt && !begun.startsWith(QLatin1Char('\''))) {
        for (const PromptKeyword& keyword : keywordsOf(mPartial)) {
            if (keyword.shown.contains(begun, Qt::CaseInsensitive)) {
                found.append(keyword.shown);
            }
        }
        return found;
    }
    for (AcEdCommandIterator commands(*acedCommandStack()); !commands.done(); commands.next()) {
        offer(QString::fromWCharArray(commands.command()->globalName()));
        offer(QString::fromWCharArray(commands.command()->localName()));
    }
    found.sort(Qt::CaseInsensitive);
    QStringList variables;
    for (const std::wstring& name : host::systemVariableNames()) {
        const QString text = QString::fromStdWString(name);
        if (text.startsWith(begun, Qt::CaseInsensitive) && begun.size() > 1) {
            variables.append(text);
        }
    }
    return found + variables;
}

void CommandLine::suggest() {
    const QString begun = mEdit->text();
    mSuggestions->clear();
    if (begun.isEmpty() || isLispBegun(begun) || !mHasRequest || mMode == host::ReadMode::line ||
        begun.contains(QLatin1Char(' '))) {
        mSuggestions->hide();
        return;
    }
    const QStringList found = candidates(begun).mid(0, 60);
    if (found.isEmpty() || (found.size() == 1 && found.first().compare(begun, Qt::CaseInsensitive) == 0)) {
        mSuggestions->hide();
        return;
    }
    mSuggestions->addItems(found);
    mSuggestions->setCurrentRow(-1);
    placeSuggestions();
}

/// Above the edit, on top of whatever stands there.
void CommandLine::placeSuggestions() {
    QWidget* top = window();
    if (mSuggestions->parentWidget() != top) {
        mSuggestions->setParent(top);
    }
    const int rows = std::min<int>(mSuggestions->count(), mostSuggestions);
    const int height =
        rows * std::max(mSuggestions->sizeHintForRow(0), 16) + 2 * mSuggestions->frameWidth() + 2;
    const QPoint corner = mEdit->mapTo(top, QPoint(0, 0));
    mSuggestions->setGeometry(corner.x(), std::max(0, corner.y() - height - 2), 300, height);
    mSuggestions->show();
    mSuggestions->raise();
}

void CommandLine::takeSuggestion() {
    QListWidgetItem* item = mSuggestions->currentItem();
    if (item == nullptr && mSuggestions->count() > 0) {
        item = mSuggestions->item(0);
    }
    if (item != nullptr) {
        const QString text = mAtCommandPrompt ? item->text() : typedFor(item->text());
        mEdit->setText(text);
        mSuggestions->hide();
    }
}

// Keys.

bool CommandLine::takeKey(QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Escape:
        mSuggestions->hide();
        mEdit->clear();
        if (cancelled) {
            cancelled();
        }
        return true;
    case Qt::Key_Space:
        if (!spaceEnds()) {
            break;
        }
        [[fallthrough]];
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (mSuggestions->isVisible() && mSuggestions->currentRow() >= 0) {
            takeSuggestion();
        }
        submit();
        return true;
    case Qt::Key_Tab:
        if (mSuggestions->isVisible()) {
            takeSuggestion();
        }
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down: {
        const int step = event.key() == Qt::Key_Up ? -1 : 1;
        if (mSuggestions->isVisible()) {
            const int count = mSuggestions->count();
            mSuggestions->setCurrentRow(
                (std::max(mSuggestions->currentRow(), step > 0 ? -1 : 0) + step + count) % count);
        } else {
            recall(step);
        }
        return true;
    }
    default:
        break;
    }
    const bool isEditing = event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Left ||
                           event.key() == Qt::Key_Right || event.key() == Qt::Key_Home ||
                           event.key() == Qt::Key_End;
    const QString text = event.text();
    const bool isText = !text.isEmpty() && text.at(0).isPrint() &&
                        !event.modifiers().testFlag(Qt::ControlModifier) &&
                        !event.modifiers().testFlag(Qt::AltModifier);
    if (!mEdit->hasFocus() && (isEditing || isText)) {
        if (isText) {
            mEdit->insert(text);
        } else {
            QCoreApplication::sendEvent(mEdit, &event);
        }
        return true;
    }
    return false;
}

bool CommandLine::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return false;
    }
    auto* key = static_cast<QKeyEvent*>(event);
    if (watched == mEdit) {
        return takeKey(*key);
    }
    const bool isCopy = key->matches(QKeySequence::Copy) || key->matches(QKeySequence::SelectAll);
    return !isCopy && takeKey(*key);
}

void CommandLine::setHistoryVisible(bool visible) {
    mHistory->setVisible(visible);
}

void CommandLine::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    mSuggestions->hide();
}

} // namespace app
