#pragma once

#include "Controls.h"

#include <QtConcurrent>

/// The lesson's pictures: added from a file, by drag and drop or by the remote control, and shown one by one.
class Cards : public QGroupBox
{
    Q_DECLARE_TR_FUNCTIONS(Cards)

public:
    explicit Cards(Calyx::Lesson* lesson) : m_lesson(lesson), m_deck(lesson->deck())
    {
        setAcceptDrops(true);
        m_list->setViewMode(QListView::IconMode);
        m_list->setMovement(QListView::Static);
        m_list->setIconSize(QSize(210, 140));
        auto* add = button(tr("&Add picture\u2026"), tr("Add a picture from a file"), [this] {
            const QByteArray formats = QImageReader::supportedImageFormats().join(" *.");
            addFiles(QFileDialog::getOpenFileUrls(this, tr("Add a picture"), QUrl(),
                                                  tr("Pictures (*.%1)").arg(QLatin1String(formats))));
        });
        arrange(this, QBoxLayout::TopToBottom,
                {m_list, new QLabel(tr("Pictures can be dropped here.")), add, m_show});
        connect(m_list, &QListWidget::currentRowChanged, m_deck,
                [this](int row) { m_deck->setCurrent(row + 1); });
        connect(lesson, &Calyx::Lesson::changed, this, &Cards::refresh);
        refresh();
    }

protected:
    void dragEnterEvent(QDragEnterEvent* event) override { event->setAccepted(event->mimeData()->hasUrls()); }
    void dropEvent(QDropEvent* event) override
    {
        event->acceptProposedAction();
        addFiles(event->mimeData()->urls());
    }

private:
    // What comes from outside may claim to be larger than any memory.
    static QImage read(QIODevice* device, int longestSide)
    {
        constexpr qint64 mostPixels = 100'000'000;
        QImageReader reader(device);
        reader.setDecideFormatFromContent(true);
        reader.setAutoTransform(true);
        const QSize size = reader.size();
        if (qMax(size.width(), size.height()) > longestSide)
            reader.setScaledSize(size.scaled(longestSide, longestSide, Qt::KeepAspectRatio));
        return qint64{size.width()} * size.height() <= mostPixels ? reader.read() : QImage();
    }
    static QByteArray pngOf(const QString& fileName)
    {
        constexpr int longestSide = 1024; // more than devices show, and a second or two on the way
        QByteArray png;
        QBuffer buffer(&png);
        QFile file(fileName);
        if (QFileInfo(file).isFile()) // a pipe would never end
            read(&file, longestSide).save(&buffer, "PNG");
        return png;
    }
    // A large picture takes its time: not on the window's thread.
    void addFiles(const QList<QUrl>& urls)
    {
        for (const QUrl& url : urls) {
            auto* reading = new QFutureWatcher<QByteArray>(this);
            connect(reading, &QFutureWatcherBase::finished, this, [=, name = url.fileName()] {
                reading->deleteLater();
                m_lesson->addCard(name, reading->result());
            });
            reading->setFuture(QtConcurrent::run(pngOf, url.toLocalFile()));
        }
    }
    void refresh()
    {
        const QSignalBlocker itself(m_list);
        const int count = m_deck->rowCount();
        for (int row = m_list->count(); row < count; ++row) {
            QByteArray bytes = m_deck->index(row).data(Calyx::Deck::PictureRole).toByteArray();
            QBuffer buffer(&bytes);
            const QPixmap pixmap = QPixmap::fromImage(read(&buffer, m_list->iconSize().width()));
            QIcon icon(pixmap);
            icon.addPixmap(pixmap, QIcon::Selected); // else it is tinted
            m_list->addItem(new QListWidgetItem(icon, m_deck->name(row + 1)));
        }
        m_list->setCurrentRow(m_deck->current() - 1);
        setTitle(count == 0 ? tr("Cards") : tr("Cards (%1 of %2)").arg(m_deck->current()).arg(count));
        allow(m_show, {{m_lesson->joinCode().isEmpty(), tr("Start the lesson first.")},
                       {count == 0, tr("Add a picture first.")}});
    }

    Calyx::Lesson* m_lesson;
    Calyx::Deck* m_deck;
    QListWidget* m_list = made<QListWidget>(tr("The pictures of the lesson"), tr("Cards"));
    QPushButton* m_show = button(tr("&Show to learners"), tr("Show this card on the learners\u2019 devices"),
                                 [this] { m_lesson->showCard(); });
};
