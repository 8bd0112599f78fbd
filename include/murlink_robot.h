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
 * Include this file and link with -lmurlink-robot. The header is plain C, valid as C89 and as C++11
 * or newer. There is nothing to configure at run time: the addresses of the robot's services are
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
 *     fprintf(stderr, "gesture recognition is not available: code %d\n", result);
 *     return 1;
 *   }
 *
 *   result = start_gesture_recognition();
 *   if (result != GESTURE_RECOGNITION_ERROR_NONE &&
 *       result != GESTURE_RECOGNITION_ERROR_ALREADY_RUNNING) {
 *     fprintf(stderr, "gesture recognition did not start: code %d\n", result);
 *     return 1;
 *   }
 *   puts("The robot recognises gestures. Press Enter to stop.");
 *   getchar();
 *
 *   gesture_recognition_finalize();
 *   return 0;
 * }
 * @endcode
 *
 *
 * Results
 *
 * Every function except foot_touch_set_button_cb() returns an int: 0 for success, otherwise a code
 * of #foot_touch_error or #gesture_recognition_error. Only the codes 0 to 4 have the same name in
 * both sets: 5, for example, is a time-out for gestures and a missing lens for foot touch. Every outcome is also written to the robot's log, with the tag "murlink".
 *
 * When memory runs out, or the system cannot create a thread, a C++ exception leaves the function;
 * it terminates a program written in C. The next call works again.
 *
 *
 * Blocking, retries and connections
 *
 * Every call to another process has a deadline of 2 s at most, given below for each function. The
 * library never retries. After a time-out or a lost connection it is unknown whether the other side
 * has acted.
 *
 * gRPC reconnects by itself, but not at once. After an outage during which calls were made, it
 * waits before it connects again, longer after each failed attempt (back-off). Calls can therefore
 * keep failing for up to two minutes after the other side is back. When you retry, pause between
 * the attempts:
 *
 * @code{.c}
 * int attempts = 0;
 * while (gesture_recognition_initialize() == GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED &&
 *        ++attempts < 130) {
 *   sleep(1);
 * }
 * @endcode
 *
 * With foot_touch_initialize(), also retry on FOOT_TOUCH_ERROR_NOT_INITIALIZED: that is its result
 * while the display cannot be reached.
 *
 * When the robot's clock is set back during a call that gets no answer, the call lasts longer, by
 * up to as much as the clock was set back, because gRPC's timers follow that clock. Setting the
 * clock forward has no effect.
 *
 * gRPC honours the environment variables http_proxy, https_proxy and grpc_proxy even for addresses
 * on the robot: unset them, or list the addresses in no_proxy.
 *
 *
 * File descriptors
 *
 * When a process has used up its file descriptors (RLIMIT_NOFILE), calls that need a new connection
 * return a connection failure until descriptors are free again. foot_touch_initialize() may succeed
 * without listening, as it does when its port is taken. If a recogniser tries to connect while no
 * descriptor is free, the library may accept no new connection afterwards, even once descriptors
 * are free; existing connections keep working. To recover, finalise and initialise foot touch.
 *
 * The first function called in a process needs free descriptors: without any, gRPC aborts it.
 *
 *
 * Threads
 *
 * Call the functions of one feature from one thread at a time. The two features are independent of
 * each other and may be used from two threads at once.
 *
 *
 * Process exit
 *
 * The process may end at any time and in any way, without finalising, on any thread, and from
 * inside the callback. Calls in flight on other threads end with the process, unanswered. The
 * callback may still run while exit() destroys the application's static objects: if it uses any,
 * call foot_touch_finalize() first. The robot's service stays on, see foot_touch_initialize().
 *
 * A program started with fork() and exec inherits none of the library's connections. A child that
 * does not exec must not call the library, because the functions may never return, and must end
 * with _exit(). While such a child lives, no other process can listen for presses.
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
  /** The service was already on: treat it as success. */
  GESTURE_RECOGNITION_ERROR_ALREADY_INITIALIZED = 1,
  /** Recognition was already running: treat it as success. */
  GESTURE_RECOGNITION_ERROR_ALREADY_RUNNING = 2,
  /** Recognition was not running when it was stopped: treat it as success. */
  GESTURE_RECOGNITION_ERROR_NOT_RUNNING = 3,
  /** Recognition was not running when it was finalised: treat it as success. */
  GESTURE_RECOGNITION_ERROR_NOT_INITIALIZED = 4,
  /** The robot did not answer within 2 s; it may or may not have acted. */
  GESTURE_RECOGNITION_ERROR_TIMED_OUT = 5,
  /** The robot answered with an unknown failure, whose number is in the log. */
  GESTURE_RECOGNITION_ERROR_UNKNOWN = 7,
  /** The robot no longer offers gesture recognition: a retry does not help. */
  GESTURE_RECOGNITION_ERROR_NOT_AVAILABLE = 8,
  /** The robot's service cannot be reached, or the connection was lost during the call. */
  GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED = 26710
};

/**
 * Switches the robot's gesture-recognition service on. Recognition does not run yet.
 *
 * Blocks until the robot answers, 2 s at most.
 *
 * @return #GESTURE_RECOGNITION_ERROR_NONE                 the service is on
 *         #GESTURE_RECOGNITION_ERROR_ALREADY_INITIALIZED  it was already on; treat it as success
 *         #GESTURE_RECOGNITION_ERROR_TIMED_OUT            no answer within 2 s; call again
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
 * @return #GESTURE_RECOGNITION_ERROR_NONE               recognition is running
 *         #GESTURE_RECOGNITION_ERROR_ALREADY_RUNNING    it was already running; treat it as success
 *         #GESTURE_RECOGNITION_ERROR_TIMED_OUT          no answer within 2 s; call again
 *         #GESTURE_RECOGNITION_ERROR_UNKNOWN            the robot failed, for example because the
 *                                                       service is off; see the log
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
 *         #GESTURE_RECOGNITION_ERROR_NOT_RUNNING        it was not running; treat it as success
 *         #GESTURE_RECOGNITION_ERROR_TIMED_OUT          no answer within 2 s; call again
 *         #GESTURE_RECOGNITION_ERROR_UNKNOWN            the robot failed; see the log
 *         #GESTURE_RECOGNITION_ERROR_NOT_AVAILABLE      this robot no longer has the feature
 *         #GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED  no connection; call again after a pause
 * @threads one gesture function at a time.
 */
int stop_gesture_recognition(void);

/**
 * Ends the use of gesture recognition: stops it if it is running.
 *
 * Sends the robot the same request as stop_gesture_recognition(); called after that function, it
 * returns #GESTURE_RECOGNITION_ERROR_NOT_INITIALIZED. The robot's service stays on, so a later
 * gesture_recognition_initialize() returns #GESTURE_RECOGNITION_ERROR_ALREADY_INITIALIZED. The
 * library keeps its connection and memory until the process ends.
 *
 * Blocks until the robot answers, 2 s at most.
 *
 * @return #GESTURE_RECOGNITION_ERROR_NONE               recognition has stopped
 *         #GESTURE_RECOGNITION_ERROR_NOT_INITIALIZED    it was not running; treat it as success
 *         #GESTURE_RECOGNITION_ERROR_TIMED_OUT          no answer within 2 s; call again
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
  /** The robot's foot-touch service was already on, perhaps because of another application. */
  FOOT_TOUCH_ERROR_ALREADY_INITIALIZED = 1,
  /** Recognition was already running: treat it as success. */
  FOOT_TOUCH_ERROR_ALREADY_RUNNING = 2,
  /** Recognition was not running when it was stopped: treat it as success. */
  FOOT_TOUCH_ERROR_NOT_RUNNING = 3,
  /**
   * Foot touch is not initialised, in this process or on the robot; or the display did not
   * acknowledge the library's address.
   */
  FOOT_TOUCH_ERROR_NOT_INITIALIZED = 4,
  /** The device has no switchable lens, which foot touch needs. */
  FOOT_TOUCH_ERROR_NOT_SUPPORTED = 5,
  /** The layout is not valid; the log names the wrong button. The negated errno EINVAL. */
  FOOT_TOUCH_ERROR_INVALID_PARAMETER = -22,
  /** The robot did not answer within 2 s; it may or may not have acted. Negated ETIMEDOUT. */
  FOOT_TOUCH_ERROR_TIMED_OUT = -110,
  /** The robot or the display answered with an unknown failure, whose number is in the log. */
  FOOT_TOUCH_ERROR_UNKNOWN = -1073741824,
  /** The robot no longer offers foot touch: a retry does not help. */
  FOOT_TOUCH_ERROR_NOT_AVAILABLE = -1073741822,
  /** The robot or the display cannot be reached, or the connection was lost during the call. */
  FOOT_TOUCH_ERROR_CONNECTION_FAILED = -29398954,
  /** A layout was set before foot touch was initialised: initialise, then set it again. */
  FOOT_TOUCH_ERROR_SERVER_NOT_READY = -29398953
};

/** One foot-touch button: a range of the layout's width. */
typedef struct button {
  /** The button's number, chosen by the application, 0 or more; passed to the callback. */
  int id;
  /** Where it begins, as a fraction of the layout's width: 0 <= start <= end. */
  float start;
  /** Where it ends, as a fraction of the layout's width: start <= end <= 1. */
  float end;
} button;

/**
 * Receives a press or a release of a button.
 *
 * The recogniser and foot_touch_finalize() wait until the callback returns; if it never returns,
 * they wait forever. Other presses are delivered meanwhile, on other threads. An exception thrown
 * by the callback, of whatever type, does not reach the application: the recogniser receives the
 * gRPC status UNKNOWN, and the next press is delivered as usual.
 *
 * The callback may
 * - set another callback or clear it, at any time;
 * - end the process;
 * - call the other functions, with the same results as elsewhere, while no other thread is in a
 *   function of the same feature. A thread in foot_touch_finalize() counts: it waits for the
 *   callback.
 *
 * It must not call foot_touch_finalize(), which would wait for the callback, and so for itself.
 *
 * @param id         the button's id as reported by the recogniser; not checked against the layout.
 * @param state      1 when a foot touches the button, 0 when it leaves it.
 * @param user_data  the pointer given to foot_touch_set_button_cb().
 * @threads runs on gRPC's threads, never on the application's; two calls may run at once, even for
 *          the same button.
 */
typedef void (*foot_touch_button_cb)(int id, int state, void* user_data);

/**
 * Switches foot touch on: sends the library's address to the display, listens for presses there,
 * and switches the robot's service on. Recognition does not run yet.
 *
 * Blocks until the display (1 s at most) and the robot (2 s at most) have answered. Does nothing
 * and returns success when foot touch is already initialised. Listening starts in the background: a
 * press in the first milliseconds after this function has returned may still be refused.
 *
 * After a failure, call it again: it repeats only the steps that have not succeeded yet. After any
 * failure other than #FOOT_TOUCH_ERROR_NOT_INITIALIZED the library keeps listening, and
 * foot_touch_finalize() cannot stop it until a later call of this function has succeeded; clear the
 * callback with foot_touch_set_button_cb(NULL, NULL) to receive no presses meanwhile.
 *
 * The address is fixed, and only one process at a time can listen on it. When it is taken, this
 * function still succeeds, but no press arrives, and the log says "cannot listen on": end the other
 * process, then finalise and initialise again.
 *
 * @return #FOOT_TOUCH_ERROR_NONE                 foot touch is on
 *         #FOOT_TOUCH_ERROR_ALREADY_INITIALIZED  the robot's service was already on: another
 *                                                application uses it or ended without finalising,
 *                                                or an earlier call timed out. Foot touch is not
 *                                                initialised in this process; call again once the
 *                                                robot has switched its service off
 *         #FOOT_TOUCH_ERROR_NOT_INITIALIZED      the display could not be reached, did not answer
 *                                                within 1 s, or failed; call again after a pause
 *         #FOOT_TOUCH_ERROR_NOT_SUPPORTED        the device has no switchable lens
 *         #FOOT_TOUCH_ERROR_TIMED_OUT            no answer from the robot within 2 s; call again
 *         #FOOT_TOUCH_ERROR_UNKNOWN              the robot failed; see the log
 *         #FOOT_TOUCH_ERROR_NOT_AVAILABLE        this robot no longer has the feature
 *         #FOOT_TOUCH_ERROR_CONNECTION_FAILED    no connection to the robot; call again after a
 *                                                pause
 * @threads one foot-touch function at a time, including those called by the callback.
 */
int foot_touch_initialize(void);

/**
 * Switches foot touch off: stops listening for presses, then switches the robot's service off.
 *
 * Blocks until every running callback has returned, without limit; then until the answers to all
 * presses are sent and all clients are disconnected, usually a few milliseconds and about 1 s at
 * most; then until the robot answers, 2 s at most. Presses that arrive meanwhile are refused.
 * Clients that keep their connection open, for example an idle recogniser, are disconnected some 5
 * ms after the last answer was sent; one that has begun a call and does not complete it, or whose
 * flow control does not admit its answer, after 1 s. The callback is not called after this function
 * has returned, unless it returned because foot touch was not initialised in this process.
 *
 * After a failure presses are no longer delivered, but foot touch still counts as initialised in
 * this process, and foot_touch_initialize() does nothing: call this function again after a pause.
 * That does not help when the robot's service is already off, for example because the robot's side
 * was restarted. Foot touch is then available again in another process, or in this one once the
 * service has been switched on by another application and this function has succeeded.
 *
 * @return #FOOT_TOUCH_ERROR_NONE               foot touch is off
 *         #FOOT_TOUCH_ERROR_NOT_INITIALIZED    it was not on, in this process or on the robot; in
 *                                              the latter case it still counts as initialised in
 *                                              this process, see above
 *         #FOOT_TOUCH_ERROR_TIMED_OUT          no answer within 2 s; call again
 *         #FOOT_TOUCH_ERROR_UNKNOWN            the robot failed; see the log
 *         #FOOT_TOUCH_ERROR_NOT_AVAILABLE      this robot no longer has the feature
 *         #FOOT_TOUCH_ERROR_CONNECTION_FAILED  no connection; call again after a pause
 * @threads one foot-touch function at a time, and never from inside the callback, which this
 *          function would wait for.
 */
int foot_touch_finalize(void);

/**
 * Replaces the button layout on the display.
 *
 * Blocks until the display answers, 2 s at most. The library does not keep the layout: set it again
 * when it was refused or lost, and after the display has restarted. Buttons may touch but not
 * overlap. A duplicate id is only reported in the log, and its buttons may overlap.
 *
 * @param buttons  `count` records, read during the call only; may be NULL when `count` is 0.
 * @param count    number of records, 0 or more; 0 clears the layout. A negative number throws
 *                 std::length_error.
 * @return #FOOT_TOUCH_ERROR_NONE               the display has the layout
 *         #FOOT_TOUCH_ERROR_INVALID_PARAMETER  a record is out of range or two overlap; nothing was
 *                                              sent
 *         #FOOT_TOUCH_ERROR_SERVER_NOT_READY   call foot_touch_initialize() first; nothing was sent
 *         #FOOT_TOUCH_ERROR_CONNECTION_FAILED  no connection, or no answer within 2 s; the display
 *                                              may or may not have the layout. Also when the layout
 *                                              is larger than the display accepts: 4 MiB unless it
 *                                              sets another limit, which at up to 18 bytes a button
 *                                              is enough for 233,000. Also, with nothing sent, when
 *                                              the callback was set too early
 *         #FOOT_TOUCH_ERROR_TIMED_OUT          reserved: a missing answer is reported as a failed
 *                                              connection
 *         #FOOT_TOUCH_ERROR_UNKNOWN            the display answered with a failure; see the log
 * @threads one foot-touch function at a time, including those called by the callback.
 */
int foot_touch_set_buttons(const button* buttons, int count);

/**
 * Sets the callback, the function that receives presses.
 *
 * Call it after every successful foot_touch_initialize(): foot_touch_finalize() discards the
 * callback. A call before that, even to clear the callback, can prevent the library from listening
 * until foot touch is finalised and initialised again.
 *
 * Does not block.
 *
 * @param cb         the callback; NULL clears it. Presses that arrive without a callback are
 *                   answered as not delivered.
 * @param user_data  passed to every call of `cb` unchanged; may be NULL, not owned. What it points
 *                   to must stay valid until foot_touch_finalize() has succeeded: a call of `cb`
 *                   that is running keeps using it even after another callback has been set.
 * @threads one foot-touch function at a time; also from inside the callback, at any time. Presses
 *          that arrive meanwhile get either the old pair of callback and user data or the new one.
 */
void foot_touch_set_button_cb(foot_touch_button_cb cb, void* user_data);

/**
 * Starts recognition. Foot touch must be on, see foot_touch_initialize().
 *
 * Blocks until the robot answers, 2 s at most.
 *
 * @return #FOOT_TOUCH_ERROR_NONE               recognition is running
 *         #FOOT_TOUCH_ERROR_ALREADY_RUNNING    it was already running; treat it as success
 *         #FOOT_TOUCH_ERROR_NOT_INITIALIZED    foot_touch_initialize() was never called
 *         #FOOT_TOUCH_ERROR_TIMED_OUT          no answer within 2 s; call again
 *         #FOOT_TOUCH_ERROR_UNKNOWN            the robot failed; see the log
 *         #FOOT_TOUCH_ERROR_NOT_AVAILABLE      this robot no longer has the feature
 *         #FOOT_TOUCH_ERROR_CONNECTION_FAILED  no connection; call again after a pause
 * @threads one foot-touch function at a time, including those called by the callback.
 */
int start_foot_touch(void);

/**
 * Stops recognition. Foot touch stays on, and recognition can be started again.
 *
 * Blocks until the robot answers, 2 s at most.
 *
 * @return #FOOT_TOUCH_ERROR_NONE               recognition has stopped
 *         #FOOT_TOUCH_ERROR_NOT_RUNNING        it was not running; treat it as success
 *         #FOOT_TOUCH_ERROR_NOT_INITIALIZED    foot_touch_initialize() was never called
 *         #FOOT_TOUCH_ERROR_TIMED_OUT          no answer within 2 s; call again
 *         #FOOT_TOUCH_ERROR_UNKNOWN            the robot failed; see the log
 *         #FOOT_TOUCH_ERROR_NOT_AVAILABLE      this robot no longer has the feature
 *         #FOOT_TOUCH_ERROR_CONNECTION_FAILED  no connection; call again after a pause
 * @threads one foot-touch function at a time, including those called by the callback.
 */
int stop_foot_touch(void);

#ifdef __cplusplus
}
#endif

#endif
