/* The task queue's start, stop, add, wait and read, for spin. Each line that shares something is one step; spin tries every
 * order of them.
 *
 * Two adders race with an owner who starts the queue, stops it, starts it again, waits until everything that was accepted
 * has run, and stops it for good; a second owner stops at the same time. A reader copies the running task's name once.
 * The condition variable may wake without reason.
 *
 * What must hold, and how it shows here:
 *   no deadlock, every stop ends, no wake-up is lost   every process reaches its end ("invalid end state" otherwise)
 *   nothing runs twice, nothing runs after a stop      assertions
 *   a stop returns after the body has ended            assertion
 *   a name that is being copied stays                  assertion
 *
 * Planted faults, each of which spin must find:
 *   PLANT_UNLOCKED_STOP   the stop notifies once, without the lock: the worker may be on its way into its wait
 *   PLANT_BEHIND_FRONT    an adder does not notify when its task is the only one
 *   PLANT_EARLY_STOP      a second stop returns while the first still waits for the worker
 *   PLANT_NAME_DIES       a task's record goes when its body ends, instead of when the next task is published
 */

#define CAPACITY 2     /* tasks that may wait; fewer than are added, so that a full queue is tried, too */
#define TASKS_EACH 2   /* that each adder adds */
#define SPURIOUS 2     /* wake-ups without reason: a few, so that none is needed for going on */

bool mutex;            /* held */
bool lifecycle;        /* held: guards start and stop against each other */
bool running;
byte waiting;          /* tasks in the store */
byte accepted;
byte ran;
bool workerAlive;
bool bodyRuns;
bool idShown;          /* runningTaskId is not 0 */
bit shown;             /* the record whose name is published */
bool recordLives[2];   /* the worker's two records */
bool workerWaits;      /* on the condition variable */
bool woken;
byte spurious;
byte adding = 2;       /* adders that have not ended */
bool secondStopped;

inline lock(which) { atomic { !which -> which = true } }
inline unlock(which) { which = false }
inline notify() { atomic { if :: workerWaits -> woken = true :: else fi } }

/* As condition_variable::wait: gives the lock up and begins to wait in one step. */
inline waitOnCondition()
{
    atomic { mutex = false; workerWaits = true };
    if
    :: atomic { woken -> woken = false }
    :: atomic { spurious < SPURIOUS -> spurious++ }
    fi;
    atomic { workerWaits = false; woken = false };
    lock(mutex)
}

proctype Worker()
{
    bit turn = 0;
    do
    :: lock(mutex);
        do
        :: !running || waiting > 0 -> break
        :: else -> waitOnCondition()
        od;
        if
        :: !running -> unlock(mutex); break
        :: else ->
            waiting--;
            atomic { recordLives[turn] = true; shown = turn; idShown = true };
            unlock(mutex);
            turn = 1 - turn;
            recordLives[turn] = false;
            assert(!bodyRuns);
            bodyRuns = true;
            ran++;
            assert(ran <= accepted);
            bodyRuns = false;
            idShown = false;       /* without the lock */
#ifdef PLANT_NAME_DIES
            recordLives[1 - turn] = false;
#endif
            skip
        fi
    od;
    atomic { recordLives[0] = false; recordLives[1] = false };
    workerAlive = false
}

inline start()
{
    lock(lifecycle);
    if
    :: running
    :: else ->
        running = true;
        assert(!workerAlive);
        workerAlive = true;
        run Worker()
    fi;
    unlock(lifecycle)
}

inline wakeAndJoin()
{
    notify();
#ifndef PLANT_UNLOCKED_STOP
    lock(mutex);
    unlock(mutex);
    notify();
#endif
    !workerAlive
}

inline stop()
{
#ifndef PLANT_EARLY_STOP
    lock(lifecycle);
#endif
    if
    :: atomic { running -> running = false }; wakeAndJoin()
    :: else
    fi;
#ifndef PLANT_EARLY_STOP
    unlock(lifecycle);
#endif
    skip
}

proctype Adder()
{
    byte added = 0;
    bool isFront;
    do
    :: added == TASKS_EACH -> break
    :: else ->
        lock(mutex);
        isFront = false;
        if
        :: waiting == CAPACITY
        :: else ->
            isFront = waiting == 0;  /* equal planned times apart, a task without delay goes behind those that wait */
            waiting++;
            accepted++
        fi;
        unlock(mutex);
#ifndef PLANT_BEHIND_FRONT
        if :: isFront -> notify() :: else fi;
#endif
        added++
    od;
    adding--
}

proctype Reader()
{
    lock(mutex);
    if
    :: idShown -> assert(recordLives[shown])  /* the copy: the id may be reset before it */
    :: else
    fi;
    unlock(mutex)
}

proctype SecondOwner()
{
    stop();
    assert(!bodyRuns || running);  /* unless it was started again */
    secondStopped = true
}

init
{
    start();
    run Adder();
    run Adder();
    run SecondOwner();
    run Reader();
    stop();
    secondStopped;              /* so that the last start is not undone */
    start();
    adding == 0 && ran == accepted && waiting == 0;
    stop();
    assert(!workerAlive && !bodyRuns);
}
