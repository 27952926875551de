/// Sizes, in bytes, that callers of the service entry points have to know.
#pragma once

enum zprusb_serviceSize {
    ZPRUSB_MAINTENANCE_READ_SIZE = 260,    // what a read of maintenance memory and a raw read may write
    ZPRUSB_MAINTENANCE_DATA_SIZE = 38,     // maintenance data
    ZPRUSB_DIAGNOSIS_RESULTS_SIZE = 40,    // self-diagnosis results
    ZPRUSB_MAX_UNIVERSAL_SIZE = 247,       // data of a universal command
    ZPRUSB_MAX_ANSWER_SIZE = 512,          // any answer with its header
    ZPRUSB_MAX_ANSWER_PAYLOAD_SIZE = 502,  // and without
    ZPRUSB_TONE_CURVE_SIZE = 1536
};
