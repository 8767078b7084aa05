#pragma once
// The track view: the GPS tracks of the Export window's selection drawn as a picture, before
// they are exported. The tracks are read a few at a time between the window's events, and
// each picture is drawn on a worker thread, so the window answers while it reads and draws.
// The wheel zooms at the pointer, a drag moves the picture, a double click fits all, and the
// pointer resting on a fix tells its track, date, time and speed.
#include "export/assembler.h"
#include "export/tracks/track_picture.h"
#include "export/tracks/track_reader.h"

#include <QDialog>
#include <QThreadPool>
#include <QTimer>
#include <atomic>
#include <memory>

class QLabel;
class QPushButton;

namespace tp {

class cDAO;
class Feedback;

class TrackCanvas : public QWidget {
    Q_OBJECT
public:
    explicit TrackCanvas(QWidget* parent = nullptr);
    ~TrackCanvas() override;

    void setTracks(std::shared_ptr<const tracks::TrackSet> set);
    const tracks::TrackSet* tracks() const { return m_set.get(); }
    const tracks::TrackView& view() const { return m_view; }
    // Every track in sight, as a double click does.
    void fitAll();
    // The picture of the view as it stands is drawn and shown.
    bool pictureReady() const;
    const QImage& picture() const { return m_picture; }
    const tracks::PictureParts& parts() const { return m_parts; }
    // Draws the view as it stands on this thread (screenshot mode).
    void drawNow();

signals:
    void pictureDrawn();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;

private:
    void viewChanged();
    void startDrawing();
    void drawn(const QImage& image, const tracks::PictureParts& parts, const tracks::TrackView& view);

    std::shared_ptr<const tracks::TrackSet> m_set;
    tracks::TrackView m_view;
    bool m_fitted = true;   // the view is the fit, and a new size fits again
    bool m_miles = false;
    QImage m_picture;                  // the last picture drawn ...
    tracks::TrackView m_pictureView;   // ... and the view it shows
    tracks::PictureParts m_parts;
    bool m_drawing = false;
    bool m_again = false;              // the view changed while a picture was being drawn
    std::shared_ptr<std::atomic<bool>> m_stop;
    QPoint m_dragFrom;
    bool m_dragging = false;
    QThreadPool m_pool;
};

class frmTrackView : public QDialog {
    Q_OBJECT
public:
    // Reads the tracks request selects (its subjects and date range) through db.
    frmTrackView(cDAO& db, Feedback& feedback, const ExportRequest& request, QWidget* parent = nullptr);
    ~frmTrackView() override;

    TrackCanvas& canvas() { return *m_canvas; }
    // Every track is read (or the read failed: the status says why).
    bool loaded() const { return m_loaded; }
    QString statusText() const;
    // Reads what is left and draws at once (screenshot mode).
    void finishNow();

private:
    void readSome();
    void showLoaded();

    ExportRequest m_request;
    tracks::TrackReader m_reader;
    bool m_begun = false;
    bool m_loaded = false;
    QTimer m_reading;
    TrackCanvas* m_canvas = nullptr;
    QLabel* lblTracksStatus = nullptr;
    QPushButton* cmdFit = nullptr;
    QPushButton* cmdClose = nullptr;
};

} // namespace tp
