#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QTimeZone>
#include <QTimer>

#include "desktop/calendarserver/CalendarServerObjects.h"
#include "desktop/calendarserver/CalendarServerWorker.h"
#include "observation/Lifetime.h"
#include "observation/Token.h"
#include "platform/EventStore.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// A calendar that is opened on the calendar server, and closed with this object. Main thread only;
/// never waits.
class CalendarServerCalendar {
 public:
  /// The server that opens it.
  struct Server {
    QDBusConnection connection;
    QString factory;
    bool mayStart = false;
  };
  /// A span of time in a time zone.
  struct Span {
    platform::Instant start;
    platform::Instant end;
    QTimeZone local;
    bool operator==(const Span&) const = default;
  };
  using Events = std::shared_ptr<const std::vector<platform::Event>>;
  struct Callbacks {
    /// It could be opened, or could not.
    std::function<void(bool isOpen)> onOpened;
    /// All occurrences in the span that was asked for, without a calendar; the earliest first.
    std::function<void(const Events&)> onEvents;
  };

  /// Begins to open it. The callbacks may not end this object.
  CalendarServerCalendar(Server server, std::string uid, platform::RunLoop& runLoop,
                         CalendarServerWorker& worker, Callbacks callbacks);
  ~CalendarServerCalendar();
  CalendarServerCalendar(const CalendarServerCalendar&) = delete;
  CalendarServerCalendar& operator=(const CalendarServerCalendar&) = delete;

  /// Has the occurrences of `span` told, at once and after every change.
  void show(const Span& span);
  /// Whether it is the program with this unique name that has it open.
  [[nodiscard]] bool isServedBy(const QString& owner) const { return owner == owner_; }

 private:
  using Answer = std::function<void(const QDBusMessage&)>;

  void call(const char* method, QVariantList arguments, Answer onReply);
  void openAt(const QDBusMessage& place);
  void watch();
  void fetchSoon();
  void fetch();
  void sort(const QStringList& texts);
  void completeObjects();
  void findZones();
  void completeZones();
  void expand();
  void endFetch();

  Server server_;
  std::string uid_;
  platform::RunLoop& runLoop_;
  CalendarServerWorker& worker_;
  Callbacks callbacks_;

  QString service_;
  QString path_;
  QString owner_;  ///< empty until it is open
  QString view_;
  std::optional<Span> span_;

  // What is being fetched.
  bool isFetching_ = false;
  bool isStale_ = false;
  std::optional<Span> fetchedSpan_;
  double fetchStart_ = 0;
  double fetchEnd_ = 0;
  double fetchDuration_ = 0;
  std::shared_ptr<CalendarServerObjects> objects_;
  QStringList incompleteUids_;
  QStringList unknownZones_;
  int callsUnderWay_ = 0;
  /// The VTIMEZONEs that the server has, by name; empty texts for those it has not.
  std::map<QString, QString> zones_;

  /// Fires when the server has said that something is new.
  QTimer news_;
  Token nextFetch_;
  /// Owns the calls under way.
  QObject calls_;
  Lifetime lifetime_;
};

}  // namespace valdrix::desktop
