#pragma once

#include <QByteArray>
#include <QString>

class PresenterCollab;

/// A picture for learners' devices: a PNG file's bytes, which travel in the message, or a reference from
/// which devices load it.
class Picture
{
public:
    Picture() = default;
    static Picture ofPng(const QByteArray& png);
    static Picture ofReference(const QString& reference);

    bool isEmpty() const { return m_png.isEmpty() && m_reference.isEmpty(); }
    QByteArray png() const { return m_png; }
    QString reference() const { return m_reference; }
    /// Makes it the card image of what goes out next, in the place of any other.
    void setOn(PresenterCollab* collab) const;

private:
    QByteArray m_png;
    QString m_reference;
};
