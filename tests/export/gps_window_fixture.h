#pragma once
// The Export window on GPS data: the demo site's tracks replaced by the shared sample, and
// helpers that choose subjects in the track-subject window through its real widgets.
#include "export/frmTrackSubjects.h"
#include "export_window_fixture.h"
#include "support/gps_rows.h"

#include <QListWidget>

namespace tp::test {

// A click on the check box of a list entry, where the style draws it.
inline void clickListCheckBox(QListWidget* list, int row)
{
    QListWidgetItem* item = list->item(row);
    list->scrollToItem(item);
    QStyleOptionViewItem option;
    option.initFrom(list->viewport());
    option.rect = list->visualItemRect(item);
    option.features = QStyleOptionViewItem::HasCheckIndicator;
    option.state |= QStyle::State_Enabled;
    const QRect box = list->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, list);
    click(list->viewport(), box.center());
}

class GpsWindowTest : public ExportFlowTest {
protected:
    void SetUp() override
    {
        ExportFlowTest::SetUp();
        for (const QString& sql : gpsSampleStatements())
            ASSERT_TRUE(site.exec(sql)) << sql.toStdString();
    }

    // Opens the window under the settings file and chooses "GPS Data".
    void openGps(const char* settings = "KRV.ini")
    {
        open(QStringLiteral("x,%1,true,1").arg(QLatin1String(settings)).toLatin1().constData());
        clickListItem(child<QListWidget>("lstTables"), QStringLiteral("GPS Data"));
        ASSERT_EQ(window->session().msTableSelected, QStringLiteral("GPSCoordinates"));
    }

    // Presses cmdAll and, in the subject window it opens, checks the entries in turn and
    // presses OK (Cancel when entries is empty). Returns the entries' texts; the window's
    // messages go to the foundation's feedback.
    QStringList chooseSubjects(std::vector<int> entries, bool ok = true)
    {
        QStringList texts;
        bool opened = false;
        QTimer timer;
        timer.setSingleShot(true);
        QObject::connect(&timer, &QTimer::timeout, [&] {
            auto* subjects = qobject_cast<frmTrackSubjects*>(QApplication::activeModalWidget());
            if (!subjects)
                return;
            opened = true;
            auto* list = subjects->findChild<QListWidget*>(QStringLiteral("lstTrackingSubject"));
            for (int i = 0; i < list->count(); ++i)
                texts << list->item(i)->text();
            for (int e : entries)
                clickListCheckBox(list, e);
            auto* close = subjects->findChild<QPushButton*>(ok ? QStringLiteral("cmdOk")
                                                               : QStringLiteral("cmdCancel"));
            click(close, close->rect().center());
            if (subjects->isVisible())   // OK refused: leave through Cancel
                subjects->reject();
        });
        timer.start(0);
        press("cmdAll");
        timer.stop();
        EXPECT_TRUE(opened) << "no subject window opened";
        return texts;
    }
};

} // namespace tp::test
