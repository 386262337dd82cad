#pragma once

// ZKMessagingObject: a base class for observers and observed objects alike.
//
// An object keeps, per message id, the objects that want to hear of that id.
// Notify hands a message to those of them whose reception is enabled (bit 0
// of their flagsData), synchronously on the caller's thread and in the order
// they were attached. Nothing locks: an object and every object joined to it
// are used from one thread at a time.
//
// Lifetime guard. AttachObserver enters each of the two objects in the
// other's clean-up list. A destructor walks its clean-up list and takes
// itself out of every object there: out of its observer table (every id) and
// out of its clean-up list. So when either side of an attachment dies first,
// the survivor no longer holds a pointer to it. The survivor is not told.
// The guard covers every pair joined by AttachObserver, also after a
// DetachObserver, which leaves the clean-up lists as they are. A clean-up
// list that is exactly full (its ring refuses removals then) grows before an
// entry is taken out, so a dead object always leaves it.
//
// Copies are not registered anywhere. A copy (constructor or assignment)
// takes the source's table and clean-up list, but no other object learns of
// the copy, so the guard does not cover it: if an object named in a copy's
// table or clean-up list dies while the copy lives, the copy keeps a dangling
// pointer, and the copy must not be notified through or destroyed after that.
// Destroying a copy while everything it names lives is harmless. Assignment
// also drops the target's own clean-up list, so objects that listed the
// target keep it after the target dies unless they are gone first.
//
// Delivery walks the live table. A receiver may attach observers (an
// observer attached to the id being delivered hears the same message, as it
// stands behind the others) and may detach or destroy observers of other
// ids. Not supported, and not detected: destroying or detaching observers
// of the id being delivered from within ReceiveNotify, destroying the
// notifying object there, and entering by hand an object that later dies.
//
// Null pointers are ignored: AttachObserver and AddObserverToAlertWhenCleanup
// with a null object, and Notify with a null message, do nothing.

#include <unordered_map>

#include "../foundation/ZKContainer.h"
#include "../foundation/ZKExport.h"
#include "../foundation/ZKFlags.h"

// The library reads only the id; a sender extends the structure with its own
// fields, and the pointer reaches each receiver unchanged.
struct ZKBaseMessage {
    unsigned int id;
};

class ZK_API ZKMessagingObject {
protected:
    unsigned long long flagsData;  // bit 0: receive enabled; other bits free for the caller
    // Who hears of which id; entries of one id in attachment order.
    std::unordered_multimap<unsigned int, ZKMessagingObject*> observers;
    // The objects to be told when this one is destroyed.
    ZKContainer<ZKMessagingObject*> cleanupList;

    static constexpr unsigned long long kReceiveNotifyBit = 1;

public:
    ZK_FLAGS_MEMBERS

    // Reception enabled, no observers, an empty clean-up list.
    ZKMessagingObject();
    // The source's table and clean-up list; only bit 0 of the flags.
    ZKMessagingObject(ZKMessagingObject const& other);
    // The source's table and clean-up list and bit 0 of its flags; the
    // target's other flag bits stay. Assignment to itself changes nothing.
    ZKMessagingObject& operator=(ZKMessagingObject const& other);
    virtual ~ZKMessagingObject();

    // Calls ReceiveNotify of every enabled observer of message->id, in
    // attachment order. An id without observers does nothing.
    virtual void Notify(ZKBaseMessage* message);
    // The base class does nothing.
    virtual void ReceiveNotify(ZKBaseMessage* message);

    // Enters `observer` for `id`, once per id, behind the observers already
    // there. Both clean-up lists take the other object first, even when the
    // pair is already entered. An object cannot observe itself.
    void AttachObserver(unsigned int const& id, ZKMessagingObject* observer);
    // Removes `observer` under every id; the clean-up lists stay.
    void DetachObserver(ZKMessagingObject* observer);
    // Empties the table; the clean-up list stays.
    void RemoveAllObservers();

    void EnableReceiveNotify() { flagsData |= kReceiveNotifyBit; }
    void DisableReceiveNotify() { flagsData &= ~kReceiveNotifyBit; }
    bool IsReceiveNotifyEnabled() const { return (flagsData & kReceiveNotifyBit) != 0; }

    // One side of the guard only; AttachObserver makes both entries. Adding
    // keeps an object at most once; removing takes out its entry, if any.
    void AddObserverToAlertWhenCleanup(ZKMessagingObject* object);
    void RemoveObserverToAlertWhenCleanup(ZKMessagingObject* object);
};
