#include "desktop/shortcuts/KGlobalAccelKeys.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "desktop/shortcuts/KGlobalAccelCall.h"
#include "desktop/shortcuts/KGlobalAccelTriggers.h"
#include "platform/EventTaps.h"

namespace valdrix::desktop {

using platform::MediaKey;

namespace {

// What the service takes with a shortcut: it is one of a program that runs, and its keys are these
// and not those that it had the last time.
constexpr uint isPresent = 2;
constexpr uint noAutoloading = 4;
// The service tells that a key repeats by a press more, until version 6.19. A release that got lost
// must not make a repeat of the next press for ever. A key is repeated after 0.6 s unless the user
// says otherwise.
constexpr int longestRepeat = 1000;  // milliseconds

const KGlobalAccelAction* actionNamed(const QString& name) {
  const auto action = std::ranges::find_if(
      kGlobalAccelActions, [&](const auto& one) { return name == QLatin1String(one.name); });
  return action == kGlobalAccelActions.end() ? nullptr : &*action;
}

std::uint32_t modifiers(const KGlobalAccelAction& action) {
  return action.hasShift ? platform::modifierFlag::shift : 0;
}

}  // namespace

KGlobalAccelKeys::KGlobalAccelKeys(SessionBus& bus, IsEntrusted isEntrusted, Events events)
    : bus_(bus),
      isEntrusted_(std::move(isEntrusted)),
      events_(std::move(events)),
      news_(bus, {.ownerChanged = [this] { meetOwner(); },
                  .signalled = [this](const QDBusMessage& message) { take(message); }}) {}

KGlobalAccelKeys::~KGlobalAccelKeys() { hold({}); }

bool KGlobalAccelKeys::offers(MediaKey key) const { return news_.isPresent() && isEntrusted_(key); }

KeyState KGlobalAccelKeys::state(MediaKey key) const {
  if (!wanted_.contains(key)) return KeyState::released;
  const bool isHeld = std::ranges::any_of(asked_, [key](const auto& entry) {
    return entry.first->key == key && !entry.first->hasShift && entry.second;
  });
  return isHeld ? KeyState::held : KeyState::taken;
}

void KGlobalAccelKeys::hold(const std::set<MediaKey>& keys) {
  wanted_ = keys;
  settle();
}

void KGlobalAccelKeys::settle() {
  if (!news_.isPresent()) return;
  for (const auto& action : kGlobalAccelActions) {
    const bool isWanted = wanted_.contains(action.key);
    if (isWanted == asked_.contains(&action)) continue;
    isWanted ? ask(action) : giveUp(action);
  }
}

void KGlobalAccelKeys::ask(const Action& action) {
  asked_.try_emplace(&action, false);
  KGlobalAccelCall{"doRegister", {action.id()}}.send(bus_);
  // A service that hangs does what it was asked when it goes on.
  KGlobalAccelCall{
      "setShortcutKeys",
      {action.id(), KGlobalAccelTriggers(action.qtKey).argument(), isPresent | noAutoloading},
      std::numeric_limits<int>::max()}
      .send(bus_, receiver_, [this, &action](const QDBusMessage& reply) {
        const auto triggers = KGlobalAccelTriggers::from(reply);
        setOurs(action, triggers && triggers->contains(action.qtKey));
      });
}

void KGlobalAccelKeys::giveUp(const Action& action) {
  asked_.erase(&action);
  down_.erase(&action);
  KGlobalAccelCall{"unregister", action.place()}.send(bus_);
}

void KGlobalAccelKeys::setOurs(const Action& action, bool isOurs) {
  const auto asked = asked_.find(&action);
  if (asked == asked_.end() || std::exchange(asked->second, isOurs) == isOurs) return;
  if (!action.hasShift) events_.changed();
}

void KGlobalAccelKeys::sweep() {
  const QStringList component{QLatin1String(Action::component), {}, {}, {}};
  KGlobalAccelCall{"allActionsForComponent", {component}}.send(
      bus_, receiver_, [this](const QDBusMessage& reply) {
        if (reply.signature() != u"aas") return;
        for (const auto& id : qdbus_cast<QList<QStringList>>(reply.arguments().at(0))) {
          const auto* action = actionNamed(id.value(1));
          if (action && !asked_.contains(action)) giveUp(*action);
        }
      });
}

void KGlobalAccelKeys::meetOwner() {
  asked_.clear();
  down_.clear();
  if (news_.isPresent()) sweep();
  settle();
  events_.changed();
}

void KGlobalAccelKeys::take(const QDBusMessage& message) {
  const auto signal = message.member();
  if (signal == u"yourShortcutsChanged") return takeChange(message);
  const auto* action = actionNamed(message.arguments().value(1).toString());
  if (!action || !asked_.contains(action)) return;
  if (signal == u"globalShortcutReleased") return release(*action);
  press(*action, signal == u"globalShortcutRepeated");
}

void KGlobalAccelKeys::takeChange(const QDBusMessage& message) {
  const auto id = message.arguments().value(0).toStringList();
  const auto triggers = KGlobalAccelTriggers::from(message, 1);
  if (!triggers) return;
  if (id.value(0) == QLatin1String(Action::component)) {
    const auto* action = actionNamed(id.value(1));
    return action ? setOurs(*action, triggers->contains(action->qtKey)) : void();
  }
  for (const auto& [action, isOurs] : std::map(asked_))
    if (!isOurs || triggers->contains(action->qtKey)) ask(*action);
}

void KGlobalAccelKeys::press(const Action& action, bool isRepeat) {
  const auto down = down_.find(&action);
  isRepeat = isRepeat || (down != down_.end() && !down->second.hasExpired());
  down_[&action].setRemainingTime(longestRepeat);
  events_.pressed({action.key, true, isRepeat, modifiers(action)});
}

void KGlobalAccelKeys::release(const Action& action) {
  if (down_.erase(&action)) events_.pressed({action.key, false, false, modifiers(action)});
}

}  // namespace valdrix::desktop
