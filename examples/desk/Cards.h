#pragma once

#include "Controls.h"

#include <CalyxClient/Lesson>

#include <QtConcurrent>

/// The lesson's pictures: added from a file, by drag and drop or by the remote control, and shown one by one.
class Cards : public QGroupBox
{
    Q_DECLARE_TR_FUNCTIONS(Cards)

public:
    /// Calls \p refuse with a sentence about a file that cannot be a card.
    Cards(Calyx::Lesson* lesson, std::function<void(QString)> refuse)
        : m_lesson(lesson), m_refuse(std::move(refuse))
    {
        setAcceptDrops(true);
        m_list->setViewMode(QListView::IconMode);
        m_list->setMovement(QListView::Static);
        m_list->setIconSize(QSize(210, 140));
        auto* add = button(tr("&Add picture\u2026"), tr("Add a picture from a file"));
        arrange(this, QBoxLayout::TopToBottom,
                {m_list, new QLabel(tr("Pictures can be dropped here.")), add, m_show});
        connect(add, &QPushButton::clicked, this, [this] {
            const QByteArray formats = QImageReader::supportedImageFormats().join(" *.");
            addFiles(QFileDialog::getOpenFileUrls(this, tr("Add a picture"), QUrl(),
                                                  tr("Pictures (*.%1)").arg(QLatin1String(formats))));
        });
        connect(m_show, &QPushButton::clicked, lesson, [lesson] { lesson->showCard(); });
        connect(m_list, &QListWidget::currentRowChanged, lesson,
                [lesson](int row) { lesson->deck()->setCurrent(row + 1); });
        connect(lesson->deck(), &Calyx::Deck::changed, this, &Cards::refresh);
        connect(lesson, &Calyx::Lesson::stateChanged, this, &Cards::refresh);
        refresh();
    }

protected:
    void dragEnterEvent(QDragEnterEvent* event) override
    {
        if (event->mimeData()->hasUrls())
            event->acceptProposedAction();
    }
    void dropEvent(QDropEvent* event) override
    {
        event->acceptProposedAction();
        addFiles(event->mimeData()->urls());
    }

private:
    struct Picture
    {
        QByteArray png;
        QString error;
    };

    // What comes from outside may claim to be larger than any memory.
    static QImage read(QIODevice* device, int longestSide, QString* error)
    {
        constexpr qint64 mostPixels = 100'000'000;
        QImageReader reader(device);
        reader.setDecideFormatFromContent(true);
        reader.setAutoTransform(true);
        const QSize size = reader.size();
        if (qMax(size.width(), size.height()) > longestSide)
            reader.setScaledSize(size.scaled(longestSide, longestSide, Qt::KeepAspectRatio));
        const bool fits = qint64(size.width()) * size.height() <= mostPixels;
        const QImage image = fits ? reader.read() : QImage();
        if (image.isNull())
            *error = fits ? reader.errorString() : tr("It is too large.");
        return image;
    }
    static Picture pictureOf(const QString& fileName)
    {
        constexpr int longestSide = 1024; // more than devices show, and a second or two on the way
        QFile file(fileName);
        if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) // a pipe would never end
            return {{}, tr("It cannot be read.")};
        Picture picture;
        const QImage image = read(&file, longestSide, &picture.error);
        QBuffer png(&picture.png);
        image.save(&png, "PNG");
        return picture;
    }
    // A large picture takes its time: not on the window's thread.
    void addFiles(const QList<QUrl>& urls)
    {
        for (const QUrl& url : urls) {
            auto* reading = new QFutureWatcher<Picture>(this);
            connect(reading, &QFutureWatcherBase::finished, this, [=, name = url.fileName()] {
                const Picture picture = reading->result();
                reading->deleteLater();
                if (!picture.error.isEmpty() || !m_lesson->deck()->add(name, picture.png))
                    return m_refuse(tr("%1 cannot be a card. %2").arg(name, picture.error));
                m_lesson->deck()->setCurrent(m_lesson->deck()->rowCount());
            });
            reading->setFuture(QtConcurrent::run(pictureOf, url.toLocalFile()));
        }
    }
    QIcon iconOf(int number) const
    {
        const QString url = m_lesson->deck()->url(number);
        QByteArray bytes = m_lesson->deck()->picture(number);
        if (bytes.isEmpty() && url.startsWith(QLatin1String("data:")))
            bytes = QByteArray::fromBase64(url.section(QLatin1Char(','), 1).toLatin1());
        QBuffer buffer(&bytes);
        QString error;
        const QPixmap pixmap = QPixmap::fromImage(read(&buffer, m_list->iconSize().width(), &error));
        QIcon icon(pixmap);
        icon.addPixmap(pixmap, QIcon::Selected); // else it is tinted
        return icon;
    }
    void refresh()
    {
        const Calyx::Deck* deck = m_lesson->deck();
        const QSignalBlocker itself(m_list);
        if (deck->rowCount() < m_list->count())
            m_list->clear();
        while (m_list->count() < deck->rowCount()) {
            const int number = m_list->count() + 1;
            m_list->addItem(new QListWidgetItem(iconOf(number), deck->name(number)));
        }
        m_list->setCurrentRow(deck->current() - 1);
        const int count = m_list->count();
        setTitle(count == 0 ? tr("Cards") : tr("Cards (%1 of %2)").arg(deck->current()).arg(count));
        allow(m_show, {m_lesson->joinCode().isEmpty() ? tr("Start the lesson first.") : QString(),
                       count == 0 ? tr("Add a picture first.") : QString()});
    }

    Calyx::Lesson* m_lesson;
    std::function<void(QString)> m_refuse;
    QListWidget* m_list = described(new QListWidget, tr("The pictures of the lesson"), tr("Cards"));
    QPushButton* m_show = button(tr("&Show to learners"), tr("Show this card on the learners\u2019 devices"));
};
