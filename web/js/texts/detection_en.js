// @ts-check

/** The texts about the methods of fixation detection in English. {name} is replaced by a value. */
export default {
    detectionMethod: 'Method of fixation detection',
    dispersionMethod: 'Dispersion',
    velocityMethod: 'Velocity',
    detecting: 'Finding the fixations…',
    moreParameters: 'More parameters',
    maxVelocity: 'Velocity threshold, °/s',
    smoothingWindow: 'Velocity window, ms',
    maxMergeGap: 'Merging: maximum gap, ms',
    maxMergeAngle: 'Merging: maximum angle, °',
    velocityHint: 'Velocity threshold: during a fixation, the angular velocity of the gaze is below the threshold.',
    geometryMissing: 'Not entered: {fields}. Enter the values that applied during the recording. Without them, the angular velocity is not known.',
    geometryRemembered: 'The screen size or the viewing distance comes from your last entry or from a validation in this browser. Check that it applies to this recording.',
    distanceFromRecord: 'The distance is the median of this recording.',
};
