// @ts-check

/** @type {Record<string, string>} */
const titles = { gazepoint: 'GazePoint', eyetech: 'EyeTech' };

/**
 * Returns the name of a tracker family as it is written in texts.
 *
 * @param {string} name the name as in the API
 */
export function trackerTitle(name) {
    return Object.hasOwn(titles, name) ? titles[name] : name;
}
