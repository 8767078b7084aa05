#include "ui/window_support.h"

#include "foundation/feedback.h"
#include "foundation/log.h"

#include <QApplication>
#include <QGuiApplication>
#include <QPixmap>
#include <QLineEdit>
#include <QListWidget>
#include <QPalette>
#include <QPushButton>
#include <QScreen>
#include <QWidget>
#include <cmath>

static void initTallyportResources()
{
    Q_INIT_RESOURCE(tallyport);
}

namespace tp::ui {

void initResources()
{
    static const bool done = [] {
        initTallyportResources();
        return true;
    }();
    (void)done;
}

QIcon programIcon()
{
    initResources();
    return QIcon(QStringLiteral(":/tallyport.png"));
}

QIcon importIcon()
{
    initResources();
    return QIcon(QStringLiteral(":/import.png"));
}

QIcon exportIcon()
{
    initResources();
    return QIcon(QStringLiteral(":/export.png"));
}

int twipsToPixels(int twips)
{
    return int(std::lround(double(twips) / kTwipsPerPixel));
}

void placeWindow(QWidget* window, int leftTwips, int topTwips, int widthTwips, int heightTwips)
{
    window->move(twipsToPixels(leftTwips), twipsToPixels(topTwips));
    window->resize(twipsToPixels(widthTwips), twipsToPixels(heightTwips));
}

void centreWindow(QWidget* window)
{
    const QScreen* screen = window->screen() ? window->screen() : QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect area = screen->availableGeometry();
    const QSize size = window->frameGeometry().size();
    const int margin = twipsToPixels(kCentreMarginTwips);
    auto place = [margin](int screenLength, int windowLength) {
        const int start = (screenLength - windowLength) / 2;
        return windowLength > screenLength - 2 * margin ? margin : start;
    };
    window->move(area.left() + place(area.width(), size.width()),
                 area.top() + place(area.height(), size.height()));
}

QColor buttonFaceColor(const QWidget* widget)
{
    return widget->palette().color(QPalette::Button);
}

QColor scrollBarColor(const QWidget* widget)
{
    // Scroll-bar tracks are drawn a shade darker than the window.
    return widget->palette().color(QPalette::Window).darker(108);
}

void setBoxColor(QLineEdit* box, const QColor& color)
{
    QPalette p = box->palette();
    p.setColor(QPalette::Base, color);
    box->setPalette(p);
}

QColor boxColor(const QLineEdit* box)
{
    return box->palette().color(QPalette::Base);
}

QPushButton* commandButton(const char* name, const QString& caption, QWidget* parent)
{
    auto* b = named(new QPushButton(caption, parent), name);
    b->setAutoDefault(false);
    return b;
}

int fillChoiceList(QListWidget* list, const QStringList& offered, const QString& emptyText)
{
    list->clear();
    list->setEnabled(true);
    list->addItems(offered);
    list->show();
    if (offered.isEmpty()) {
        list->setEnabled(false);
        list->addItem(emptyText);
    }
    return int(offered.size());
}

bool highlightEntry(QListWidget* list, const QString& text)
{
    const auto items = list->findItems(text, Qt::MatchExactly);
    if (items.isEmpty() || !list->isEnabled() || list->isHidden())
        return false;
    list->setCurrentItem(items.first());
    return true;
}

bool savePicture(QWidget* window, const QString& path, QStringList& written)
{
    window->show();
    QApplication::processEvents();
    if (!window->grab().save(path, "PNG"))
        return false;
    written << path;
    return true;
}

void reportLoadFailure(Feedback& feedback, const std::exception& e)
{
    feedback.busy(false);
    feedback.message(0, QStringLiteral("Unexpected error occurred"), kBoxTitle);
    WriteLog(QStringLiteral("Error no. 0: ") + QString::fromLocal8Bit(e.what()) +
             QStringLiteral("; From: Tallyport: Module: Main:Form_load: Parameters:  NONE "));
}

} // namespace tp::ui
