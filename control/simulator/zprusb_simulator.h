/// @file zprusb_simulator.h
/// What a test can do to the simulated printers of its own process: set them up, make them fail, pull their
/// plug, and look at what arrived. The simulator is a control library; programs print through it without this
/// header, which only needs it loaded in the same process.
///
/// A page that the printer runs out of media for, checked from the printer's side:
///
///     char error[ZPRUSBSIM_ERROR_SIZE];
///     zprusbsim_configure("{\"output\": \"/tmp/pages\", \"printers\": [{}]}", error, sizeof error);
///     ... open the library, choose a media size ...
///     zprusbsim_setCondition(0, "out of media", 0, 0);
///     ... starting a page fails now; zprusbsim_printedPages(0) is still 0 ...
///
/// Conventions:
///
/// - Printers are named by their device number, from 0 in the order of the configuration. A function that is
///   given a number without a printer returns 0 and does nothing else.
/// - Functions return 1 for success and 0 for failure unless they say otherwise, and may be called from any
///   thread. Texts are UTF-8 and end with a zero.
/// - Printers exist once per process and outlive SDKUsb_Close() as well as the unloading of the simulator.
///   What they remember (see zprusbsim_state()) and their faults stay until zprusbsim_configure() makes new
///   printers.
#ifndef ZPRUSB_SIMULATOR_H
#define ZPRUSB_SIMULATOR_H

#include <stdint.h>

/// Room that every error sentence fits in; a longer one is cut off.
#define ZPRUSBSIM_ERROR_SIZE 512

#ifdef __cplusplus
extern "C" {
#endif

/// Replaces all printers by those of a configuration, as the file named by the environment variable
/// ZPRUSB_SIMULATOR would have. All devices are closed, as if the process had called SDKUsb_Close() for each;
/// pipes that were given out fail from then on.
/// @param json the text of a configuration file; "{}" is the default, one ready printer.
/// @param error receives one sentence when the text is refused; nothing has changed then. May be null.
/// @param errorSize bytes that `error` has room for.
/// @return 1; 0 when the text is refused.
uint32_t zprusbsim_configure(const char* json, char* error, uint32_t errorSize);

/// Adds one fault, after those that are there already. The first one that is due decides about an answer.
/// Occurrences are counted from now on.
/// @param json one element of the configuration's "faults".
/// @param error as for zprusbsim_configure().
/// @param errorSize bytes that `error` has room for.
/// @return 1; 0 when the text is refused.
uint32_t zprusbsim_addFault(const char* json, char* error, uint32_t errorSize);

/// Removes all faults of the printer, also those of its configuration.
/// @param printer device number.
/// @return 1; 0 without such a printer.
uint32_t zprusbsim_clearFaults(uint32_t printer);

/// Changes what the printer says about itself, from the next request on.
/// @param printer device number.
/// @param condition "ready", "printing", "cover open", "out of media", "out of consumables" or "device error".
/// @param group, detail of a device error; ignored for all other conditions.
/// @return 1; 0 without such a printer, and for any other condition.
uint32_t zprusbsim_setCondition(uint32_t printer, const char* condition, uint8_t group, uint8_t detail);

/// Sets the two flag bytes of the status answer, apart from the status number, which is that of the condition.
/// Until then both are 1 while the printer is printing and 0 otherwise.
/// @param printer device number.
/// @param first, second the flags; a host takes anything but 0 for set.
/// @return 1; 0 without such a printer.
uint32_t zprusbsim_setStatusFlags(uint32_t printer, uint8_t first, uint8_t second);

/// Pulls the plug: transfers that wait on the printer's pipes fail, SDKUsb_CheckDevice() gives 0, and the
/// process gets the system's device-change message. A page that was arriving ends as incomplete; this waits
/// until it is written.
/// @param printer device number.
/// @return 1; 0 without such a printer.
uint32_t zprusbsim_unplug(uint32_t printer);

/// Plugs the printer in again, and sends the device-change message. A device handle from before stays gone; the
/// printer has to be opened anew.
/// @param printer device number.
/// @return 1; 0 without such a printer.
uint32_t zprusbsim_plug(uint32_t printer);

/// Takes the oldest request that has arrived and was not taken yet. The printer keeps the last 1000; image data
/// are no requests.
/// @param printer device number.
/// @param bytes receives the request as it came over the pipe, at most `capacity` bytes of it.
/// @param capacity bytes that there is room for.
/// @return the request's length, or 0 when there is none.
uint32_t zprusbsim_takeRequest(uint32_t printer, uint8_t* bytes, uint32_t capacity);

/// Tells how many pages were printed.
/// @param printer device number.
/// @return the number of pages that have been printed, each counted once whatever its copies; pages whose data
///         did not arrive completely don't count.
uint32_t zprusbsim_printedPages(uint32_t printer);

/// Waits until the printer is done with pages, complete or not.
/// @param printer device number.
/// @param pages how many in all since the printer was configured.
/// @param milliseconds how long to wait at most.
/// @return whether there were as many in time. Their files are written then.
uint32_t zprusbsim_waitForPages(uint32_t printer, uint32_t pages, uint32_t milliseconds);

/// Tells where the picture of the last page is, complete or not; its data sheet stands beside it, with the
/// ending ".json".
/// @param printer device number.
/// @param path receives the absolute path of the PNG file; it is cut off when it does not fit.
/// @param capacity bytes that there is room for.
/// @return the length of the path without its final zero, or 0 when there was no page.
uint32_t zprusbsim_lastPage(uint32_t printer, char* path, uint32_t capacity);

/// Tells all that the printer is and remembers, as a JSON object: "serial", "plugged", "condition",
/// "errorGroup", "errorDetail", "uniqueString", "jobNumber", "printedPages", "counters" (seven), "memory"
/// (hexadecimal digits), "operationButton", "parameter" (these two 0 until they are set), "maintenanceParams"
/// (six), "ledFlashes", "resets", "requests" (how many ever came), "diagnosis" (null, or the last one's "kind",
/// "parameters" and "passed") and "updates" (of each target the "target", "start" and "length").
/// @param printer device number.
/// @param json receives the text; it is cut off when it does not fit. May be null when `capacity` is 0.
/// @param capacity bytes that there is room for.
/// @return the length of the text without its final zero.
uint32_t zprusbsim_state(uint32_t printer, char* json, uint32_t capacity);

/// Copies the last update data that came whole for a target.
/// @param printer device number.
/// @param target 3 and 4 are the two tone curves, until they are reset; every other target is a firmware image.
/// @param bytes receives at most `capacity` bytes of them; may be null when `capacity` is 0.
/// @param capacity bytes that there is room for.
/// @return their length, or 0 when there are none.
uint32_t zprusbsim_update(uint32_t printer, uint8_t target, uint8_t* bytes, uint32_t capacity);

#ifdef __cplusplus
}
#endif

#endif
