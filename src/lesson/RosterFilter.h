#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/lesson/Roster.h>

#include <QSortFilterProxyModel>

namespace Calyx {

/// Those of a Roster who are here, by name; or, of those, who has not answered Lesson::poll() yet: what a
/// list of the class shows. The roles are the roster's; Qt::CheckStateRole tells who has answered.
///
/// Lives on the roster's thread, and owns nothing.
class CALYXCLIENT_EXPORT RosterFilter : public QSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(Calyx::Roster* roster READ roster WRITE setRoster NOTIFY rosterChanged)
    Q_PROPERTY(bool onlyMissing READ isOnlyMissing WRITE setOnlyMissing NOTIFY onlyMissingChanged)

public:
    /// Shows nobody, until it has a roster.
    explicit RosterFilter(QObject* parent = nullptr);
    /// Shows \p roster at once.
    explicit RosterFilter(Roster* roster, QObject* parent = nullptr);

    /// Whose devices are shown; null at first.
    Roster* roster() const;
    /// Shows those of \p roster, which may be null.
    void setRoster(Roster* roster);
    /// Whether those who have answered are left out; false at first.
    bool isOnlyMissing() const { return m_isOnlyMissing; }
    /// Leaves them out, or shows them again.
    void setOnlyMissing(bool onlyMissing);

    /// As views want it.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

Q_SIGNALS:
    /// roster() has changed.
    void rosterChanged();
    /// isOnlyMissing() has changed.
    void onlyMissingChanged();

protected:
    /// Whether the roster's row is shown.
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
    bool m_isOnlyMissing = false;
};

} // namespace Calyx
