/* SPDX-License-Identifier: Apache-2.0 */
/**
 * @file murlink_robot.h
 *
 * Hand-gesture recognition and foot-touch buttons for applications on a robot.
 *
 * Both features run in other processes of the robot. This library switches them on and off, starts
 * and stops recognition, tells the display where the foot-touch buttons are, and delivers button
 * presses to a callback of the application.
 *
 *
 * How to use it
 *
 * Include this file and link with -lmurlink-robot. Plain C: valid as C89 and newer, and as C++11
 * and newer. Nothing has to be configured at run time: the addresses of the robot's services are
 * compiled into the library. A complete program:
 *
 * @code
 * #include <stdio.h>
 *
 * #include "murlink_robot.h"
 *
 * int main(void) {
 *   int result = gesture_recognition_initialize();
 *   if (result != GESTURE_RECOGNITION_ERROR_NONE &&
 *       result != GESTURE_RECOGNITION_ERROR_ALREADY_INITIALIZED) {
 *     fprintf(stderr, "gesture recognition is not to be had: %d\n", result);
 *     return 1;
 *   }
 *
 *   result = start_gesture_recognition();
 *   if (result != GESTURE_RECOGNITION_ERROR_NONE &&
 *       result != GESTURE_RECOGNITION_ERROR_ALREADY_RUNNING) {
 *     fprintf(stderr, "recognition did not start: %d\n", result);
 *     return 1;
 *   }
 *   puts("The robot recognises gestures. Press Enter to stop.");
 *   getchar();
 *
 *   result = gesture_recognition_finalize();
 *   return result == GESTURE_RECOGNITION_ERROR_NONE ? 0 : 1;
 * }
 * @endcode
 *
 *
 * Results
 *
 * Every function but foot_touch_set_button_cb() returns an int: 0 for success, otherwise a code of
 * #foot_touch_error or #gesture_recognition_error, two sets that share no meaning beyond 0. Each
 * outcome is also written to the robot's log with the tag "murlink".
 *
 * Without memory, or without a thread to listen with, a C++ exception leaves the function, and ends
 * a program that is written in C. The next call works.
 *
 *
 * Waiting
 *
 * A function that asks another process waits for its answer for 2 s at most, and says so below.
 * Nothing is tried again by itself. After a time-out or a lost connection the other side may or may
 * not have acted. The connection mends itself, but not at once: after an outage during which calls
 * were made, gRPC waits before it connects again, longer each time, so calls can go on failing for
 * up to two minutes after the other side is back. Try again with a pause rather than without:
 *
 * @code{.c}
 * int attempts = 0;
 * while (gesture_recognition_initialize() == GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED &&
 *        ++attempts < 130) {
 *   sleep(1);
 * }
 * @endcode
 *
 * For foot_touch_initialize() such a loop goes on with FOOT_TOUCH_ERROR_NOT_INITIALIZED as well:
 * that is its answer while the display cannot be reached.
 *
 * When the robot's clock is set back, a call that nobody answers can last longer, by as much as the
 * clock was set back: gRPC's own timers follow that clock. Setting it forward changes nothing.
 *
 * gRPC honours the environment variables http_proxy, https_proxy and grpc_proxy even for addresses
 * on the robot: unset them, or name the addresses in no_proxy.
 *
 *
 * File descriptors
 *
 * A process that has used up its file descriptors (RLIMIT_NOFILE) gets connection failures until
 * some are free again, and foot_touch_initialize() may succeed without listening, as when its port
 * is taken. Presses need more: a recogniser that tries to connect meanwhile can leave the library
 * deaf, even once there are free descriptors, to all but those who were connected before. Finalise
 * and initialise again; then all are heard. The first function that is called in a process needs
 * free descriptors: gRPC ends a process in which it cannot begin.
 *
 *
 * Threads
 *
 * The functions of one feature must be called from one thread at a time. The two features are
 * independent of each other and may be used from two threads at once.
 *
 *
 * The end of the process
 *
 * The process may end at any time and in any way, without finalising, on any thread and from inside
 * the callback. Calls that run on other threads end with it, without an answer. The callback may
 * still be called while exit() destroys the application's static objects: when it uses one, call
 * foot_touch_finalize() before. The robot's service stays on, see foot_touch_initialize().
 *
 * A program that is started by fork() and exec gets none of the library's connections. A child that
 * does not exec must not call the library, whose functions may never return in it, and has to leave
 * by _exit(); as long as it lives, no other process can listen for presses.
 */
#ifndef MURLINK_ROBOT_H
#define MURLINK_ROBOT_H

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------- gesture recognition */

/** What the gesture functions return. */
enum gesture_recognition_error {
  /** Success. */
  GESTURE_RECOGNITION_ERROR_NONE = 0,
  /** The service was on already: recognition can be started. */
  GESTURE_RECOGNITION_ERROR_ALREADY_INITIALIZED = 1,
  /** Recognition was running already: nothing is left to do. */
  GESTURE_RECOGNITION_ERROR_ALREADY_RUNNING = 2,
  /** Recognition was not running: nothing is left to do. */
  GESTURE_RECOGNITION_ERROR_NOT_RUNNING = 3,
  /** Recognition had ended before it was finalised: nothing is left to do. */
  GESTURE_RECOGNITION_ERROR_NOT_INITIALIZED = 4,
  /** No answer within 2 s; the robot may or may not have acted. */
  GESTURE_RECOGNITION_ERROR_TIMED_OUT = 5,
  /** The robot answered with a failure that has no meaning here; the log shows its number. */
  GESTURE_RECOGNITION_ERROR_UNKNOWN = 7,
  /** The robot no longer offers gesture recognition: trying again does not help. */
  GESTURE_RECOGNITION_ERROR_NOT_AVAILABLE = 8,
  /** No connection to the robot's service, or it was lost during the call. */
  GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED = 26710
};

/**
 * Switches the gesture-recognition service on. Recognition does not run yet.
 *
 * Blocks until the robot answers, 2 s at most.
 *
 * @return #GESTURE_RECOGNITION_ERROR_NONE                 the service is on
 *         #GESTURE_RECOGNITION_ERROR_ALREADY_INITIALIZED  it was on before; go on as after success
 *         #GESTURE_RECOGNITION_ERROR_TIMED_OUT            no answer in time; call again
 *         #GESTURE_RECOGNITION_ERROR_UNKNOWN              the robot failed; see the log
 *         #GESTURE_RECOGNITION_ERROR_NOT_AVAILABLE        this robot no longer has the feature
 *         #GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED    no connection; call again after a pause
 * @threads one gesture function at a time.
 */
int gesture_recognition_initialize(void);

/**
 * Starts recognition. The service must be on, see gesture_recognition_initialize().
 *
 * Blocks until the robot answers, 2 s at most.
 *
 * @return #GESTURE_RECOGNITION_ERROR_NONE               recognition runs
 *         #GESTURE_RECOGNITION_ERROR_ALREADY_RUNNING    it ran before; go on as after success
 *         #GESTURE_RECOGNITION_ERROR_TIMED_OUT          no answer in time; call again
 *         #GESTURE_RECOGNITION_ERROR_UNKNOWN            the robot failed, for instance because the
 *                                                       service is not on; see the log
 *         #GESTURE_RECOGNITION_ERROR_NOT_AVAILABLE      this robot no longer has the feature
 *         #GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED  no connection; call again after a pause
 * @threads one gesture function at a time.
 */
int start_gesture_recognition(void);

/**
 * Stops recognition. The service stays on, and recognition can be started again.
 *
 * Blocks until the robot answers, 2 s at most.
 *
 * @return #GESTURE_RECOGNITION_ERROR_NONE               recognition has stopped
 *         #GESTURE_RECOGNITION_ERROR_NOT_RUNNING        it did not run; go on as after success
 *         #GESTURE_RECOGNITION_ERROR_TIMED_OUT          no answer in time; call again
 *         #GESTURE_RECOGNITION_ERROR_UNKNOWN            the robot failed; see the log
 *         #GESTURE_RECOGNITION_ERROR_NOT_AVAILABLE      this robot no longer has the feature
 *         #GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED  no connection; call again after a pause
 * @threads one gesture function at a time.
 */
int stop_gesture_recognition(void);

/**
 * Ends the use of gesture recognition: stops it if it runs.
 *
 * Sends the robot the same request as stop_gesture_recognition(), so after that function it returns
 * #GESTURE_RECOGNITION_ERROR_NOT_INITIALIZED. The robot's service itself stays on: a later
 * gesture_recognition_initialize() then returns #GESTURE_RECOGNITION_ERROR_ALREADY_INITIALIZED.
 * Nothing in the process is released.
 *
 * Blocks until the robot answers, 2 s at most.
 *
 * @return #GESTURE_RECOGNITION_ERROR_NONE               recognition has stopped
 *         #GESTURE_RECOGNITION_ERROR_NOT_INITIALIZED    it did not run; go on as after success
 *         #GESTURE_RECOGNITION_ERROR_TIMED_OUT          no answer in time; call again
 *         #GESTURE_RECOGNITION_ERROR_UNKNOWN            the robot failed; see the log
 *         #GESTURE_RECOGNITION_ERROR_NOT_AVAILABLE      this robot no longer has the feature
 *         #GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED  no connection; call again after a pause
 * @threads one gesture function at a time.
 */
int gesture_recognition_finalize(void);

/* ---------------------------------------- foot touch */

/** What the foot-touch functions return. */
enum foot_touch_error {
  /** Success. */
  FOOT_TOUCH_ERROR_NONE = 0,
  /** The robot's foot-touch service was switched on already, perhaps by another application. */
  FOOT_TOUCH_ERROR_ALREADY_INITIALIZED = 1,
  /** Recognition was running already: nothing is left to do. */
  FOOT_TOUCH_ERROR_ALREADY_RUNNING = 2,
  /** Recognition was not running: nothing is left to do. */
  FOOT_TOUCH_ERROR_NOT_RUNNING = 3,
  /** Foot touch is not initialised, here or on the robot; or the display could not be told. */
  FOOT_TOUCH_ERROR_NOT_INITIALIZED = 4,
  /** The device has no switchable lens, and so no foot touch. */
  FOOT_TOUCH_ERROR_NOT_SUPPORTED = 5,
  /** The layout is not valid; the log says which button is wrong. The negated errno EINVAL. */
  FOOT_TOUCH_ERROR_INVALID_PARAMETER = -22,
  /** The robot did not answer within 2 s and may or may not have acted. Negated errno ETIMEDOUT. */
  FOOT_TOUCH_ERROR_TIMED_OUT = -110,
  /** A service answered with a failure that has no meaning here; the log shows its number. */
  FOOT_TOUCH_ERROR_UNKNOWN = -1073741824,
  /** The robot no longer offers foot touch: trying again does not help. */
  FOOT_TOUCH_ERROR_NOT_AVAILABLE = -1073741822,
  /** No connection to the robot or the display, or it was lost during the call. */
  FOOT_TOUCH_ERROR_CONNECTION_FAILED = -29398954,
  /** A layout was given before foot touch was initialised: initialise, then send it again. */
  FOOT_TOUCH_ERROR_SERVER_NOT_READY = -29398953
};

/** One foot-touch button: a stretch of the layout's width. */
typedef struct button {
  /** The application's name for the button, 0 or more; handed to the callback. */
  int id;
  /** Where it begins, as a fraction of the layout's width: 0 <= start <= end. */
  float start;
  /** Where it ends, as a fraction of the layout's width: start <= end <= 1. */
  float end;
} button;

/**
 * Receives a button press or release.
 *
 * @param id         the button's id, as reported by the recogniser; not compared with the layout.
 * @param state      1 when a foot touches the button, 0 when it leaves it.
 * @param user_data  the pointer given to foot_touch_set_button_cb().
 * The recogniser waits until it returns, and so does foot_touch_finalize(): a callback that never
 * returns keeps both waiting for ever. Other presses are delivered meanwhile, on other threads. An
 * exception that leaves it, of whatever type, does not reach the application; the recogniser is
 * answered with gRPC's status UNKNOWN, and the next press comes as usual.
 *
 * It may set another callback or clear it at any time, and end the process. It may call the other
 * functions, with the same results as elsewhere, while no other thread calls one of the same
 * feature; a thread in foot_touch_finalize(), which waits for the callback, is one that does. It
 * must not call foot_touch_finalize() itself, which would wait for itself for ever.
 *
 * @threads runs on gRPC's threads, never on the application's; two calls may run at once, even for
 *          the same button.
 */
typedef void (*foot_touch_button_cb)(int id, int state, void* user_data);

/**
 * Switches foot touch on: starts to listen for presses, tells the display where, and switches the
 * robot's service on. Recognition does not run yet.
 *
 * Blocks until the display (1 s at most) and the robot (2 s at most) have answered. Does nothing
 * and returns success when foot touch is initialised already. The library is about to listen when
 * this function returns; a press in the first milliseconds may still be refused.
 *
 * After a failure, call it again: it goes on where it stopped. When it was the robot that failed,
 * the library listens already, and goes on to. Until a later call succeeds, foot_touch_finalize()
 * does nothing; foot_touch_set_button_cb(NULL, NULL) keeps presses from the application.
 *
 * The display and the recogniser are told a fixed address, which one process at a time can listen
 * on. When it is taken, this function succeeds all the same, no press arrives, and the log says
 * "cannot listen on": end the other process, finalise, and initialise again.
 *
 * @return #FOOT_TOUCH_ERROR_NONE                 foot touch is on
 *         #FOOT_TOUCH_ERROR_ALREADY_INITIALIZED  the robot's service was on before, perhaps because
 *                                                an application ended without finalising, or a
 *                                                call before this one had timed out. Foot
 *                                                touch is not initialised in this process until
 *                                                the robot has switched its service off
 *         #FOOT_TOUCH_ERROR_NOT_INITIALIZED      the display could not be told; call again
 *         #FOOT_TOUCH_ERROR_NOT_SUPPORTED        the device has no switchable lens
 *         #FOOT_TOUCH_ERROR_TIMED_OUT            no answer from the robot in time; call again
 *         #FOOT_TOUCH_ERROR_UNKNOWN              the robot failed; see the log
 *         #FOOT_TOUCH_ERROR_NOT_AVAILABLE        this robot no longer has the feature
 *         #FOOT_TOUCH_ERROR_CONNECTION_FAILED    no connection to the robot; call again after a
 *                                                pause
 * @threads one foot-touch function at a time, those that the callback calls included.
 */
int foot_touch_initialize(void);

/**
 * Switches foot touch off: stops to listen for presses, then switches the robot's service off.
 *
 * Blocks until every callback that runs has returned, without limit, and then until the robot
 * answers, 2 s at most. A press that arrives meanwhile is refused. A client that does not take
 * leave is cut off a second or two after the end of the last press, so that whoever reported it
 * gets its answer, and within milliseconds when that is past: a recogniser that hangs, whose host
 * is gone, or that uses gRPC for nothing but presses and reports none at the time; a stranger
 * that says nothing. No callback runs after it has returned, unless it returned because foot
 * touch was not initialised.
 *
 * After a failure presses are no longer delivered, yet foot touch still counts as initialised, and
 * foot_touch_initialize() would do nothing: call this function again after a pause. That does not
 * help when the robot's service is off already, as after a restart of the robot's side: foot touch
 * is to be had again only once the service is on again, or in another process.
 *
 * @return #FOOT_TOUCH_ERROR_NONE               foot touch is off
 *         #FOOT_TOUCH_ERROR_NOT_INITIALIZED    it was not on, here or on the robot; in the latter
 *                                              case it counts as on here, as above
 *         #FOOT_TOUCH_ERROR_TIMED_OUT          no answer in time; call again
 *         #FOOT_TOUCH_ERROR_UNKNOWN            the robot failed; see the log
 *         #FOOT_TOUCH_ERROR_NOT_AVAILABLE      this robot no longer has the feature
 *         #FOOT_TOUCH_ERROR_CONNECTION_FAILED  no connection; call again after a pause
 * @threads one foot-touch function at a time; never from inside the callback, where it would wait
 *          for itself for ever.
 */
int foot_touch_finalize(void);

/**
 * Replaces the button layout that the display holds.
 *
 * Blocks until the display answers, 2 s at most. The layout goes to the display and is kept nowhere
 * else: send it again when it was refused or lost, and after the display was restarted. Two buttons
 * may touch but not overlap; an id that is used twice is reported in the log, not refused.
 *
 * @param buttons  `count` records, read during the call only; may be NULL when `count` is 0.
 * @param count    number of records, 0 or more; 0 clears the layout. A negative number throws
 *                 std::length_error.
 * @return #FOOT_TOUCH_ERROR_NONE               the display has the layout
 *         #FOOT_TOUCH_ERROR_INVALID_PARAMETER  a record is out of range or two overlap; nothing was
 *                                              sent
 *         #FOOT_TOUCH_ERROR_SERVER_NOT_READY   call foot_touch_initialize() first; nothing was sent
 *         #FOOT_TOUCH_ERROR_CONNECTION_FAILED  no connection, or no answer in time; the display may
 *                                              or may not have the layout. Also, with nothing sent,
 *                                              after a callback that was set too early
 *         #FOOT_TOUCH_ERROR_TIMED_OUT          reserved: a missing answer is a failed connection
 *         #FOOT_TOUCH_ERROR_UNKNOWN            the display answered with a failure
 * @threads one foot-touch function at a time, those that the callback calls included.
 */
int foot_touch_set_buttons(const button* buttons, int count);

/**
 * Sets the function that receives presses. Call it after foot_touch_initialize(): a callback set
 * before keeps the library from listening until foot touch is finalised and initialised again.
 *
 * Does not block.
 *
 * @param cb         the function; NULL clears it, and presses are then answered as not delivered.
 * @param user_data  handed to every call of `cb` unchanged; may be NULL, not owned. What it points
 *                   to must stay valid until foot_touch_finalize() has succeeded: a call that is
 *                   under way goes on with it even after another callback has been set.
 * @threads one foot-touch function at a time, and from inside the callback; presses that arrive
 *          meanwhile see either the old pair or the new one.
 */
void foot_touch_set_button_cb(foot_touch_button_cb cb, void* user_data);

/**
 * Starts recognition. Foot touch must be on, see foot_touch_initialize().
 *
 * Blocks until the robot answers, 2 s at most.
 *
 * @return #FOOT_TOUCH_ERROR_NONE               recognition runs
 *         #FOOT_TOUCH_ERROR_ALREADY_RUNNING    it ran before; go on as after success
 *         #FOOT_TOUCH_ERROR_NOT_INITIALIZED    foot_touch_initialize() was never called
 *         #FOOT_TOUCH_ERROR_TIMED_OUT          no answer in time; call again
 *         #FOOT_TOUCH_ERROR_UNKNOWN            the robot failed; see the log
 *         #FOOT_TOUCH_ERROR_NOT_AVAILABLE      this robot no longer has the feature
 *         #FOOT_TOUCH_ERROR_CONNECTION_FAILED  no connection; call again after a pause
 * @threads one foot-touch function at a time, those that the callback calls included.
 */
int start_foot_touch(void);

/**
 * Stops recognition. Foot touch stays on, and recognition can be started again.
 *
 * Blocks until the robot answers, 2 s at most.
 *
 * @return #FOOT_TOUCH_ERROR_NONE               recognition has stopped
 *         #FOOT_TOUCH_ERROR_NOT_RUNNING        it did not run; go on as after success
 *         #FOOT_TOUCH_ERROR_NOT_INITIALIZED    foot_touch_initialize() was never called
 *         #FOOT_TOUCH_ERROR_TIMED_OUT          no answer in time; call again
 *         #FOOT_TOUCH_ERROR_UNKNOWN            the robot failed; see the log
 *         #FOOT_TOUCH_ERROR_NOT_AVAILABLE      this robot no longer has the feature
 *         #FOOT_TOUCH_ERROR_CONNECTION_FAILED  no connection; call again after a pause
 * @threads one foot-touch function at a time, those that the callback calls included.
 */
int stop_foot_touch(void);

#ifdef __cplusplus
}
#endif

#endif
