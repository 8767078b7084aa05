#pragma once
// Small helpers every window uses: the program's pictures, window placement in twips, and
// the platform colours the windows name.
#include <QColor>
#include <QIcon>
#include <QStringList>
#include <exception>

class QLineEdit;
class QListWidget;
class QPushButton;
class QWidget;

namespace tp {
class Feedback;
}

namespace tp::ui {

// Makes the compiled-in pictures available (safe to call more than once).
void initResources();
QIcon programIcon();
QIcon importIcon();
QIcon exportIcon();

// Window measures are given in twips; the screen has 15 twips to a pixel.
constexpr int kTwipsPerPixel = 15;
int twipsToPixels(int twips);
// Client size and position of a top-level window, in twips.
void placeWindow(QWidget* window, int leftTwips, int topTwips, int widthTwips, int heightTwips);
// Centres a top-level window on its screen; where it does not fit, its top or left edge keeps
// a margin of 100 twips from the screen's edge.
constexpr int kCentreMarginTwips = 100;
void centreWindow(QWidget* window);

// Background colours of text boxes that cannot be typed into.
QColor buttonFaceColor(const QWidget* widget);
QColor scrollBarColor(const QWidget* widget);
void setBoxColor(QLineEdit* box, const QColor& color);
QColor boxColor(const QLineEdit* box);

// A control with the name the window knows it by.
template <typename W>
W* named(W* widget, const char* name)
{
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}
// A named button that Enter in another control does not press.
QPushButton* commandButton(const char* name, const QString& caption, QWidget* parent);

// Fills a data-set list with the offered entries; with none the list is disabled and shows
// emptyText alone. Returns the number offered.
int fillChoiceList(QListWidget* list, const QStringList& offered, const QString& emptyText);
// Highlights the entry with this text in an enabled, shown list; false when there is none.
bool highlightEntry(QListWidget* list, const QString& text);

// Screenshot mode: shows the window, saves a PNG picture of it at path and adds the path to
// written; false when the picture could not be saved.
bool savePicture(QWidget* window, const QString& path, QStringList& written);

// A window's load handler failed unexpectedly: the user is told, the log gets the report.
void reportLoadFailure(Feedback& feedback, const std::exception& e);

} // namespace tp::ui
