const patienceMs = 3000;

/** Everything but letters, digits and -._~ goes percent-encoded: the server takes & and blanks for the path's end. */
export function encodeParameter(text) {
    return encodeURIComponent(text).replace(/[!'()*]/g, c => '%' + c.charCodeAt(0).toString(16).toUpperCase());
}

/** An answer of the server itself, without asking the service: "503 too many connections". */
export class Refusal extends Error {}

/** The service's answer to a path; throws if there is none, or if it is no JSON. */
export async function ask(path, options = {}) {
    const answer = await fetch(path, { cache: 'no-store', signal: AbortSignal.timeout(patienceMs), ...options });
    if (!answer.ok) throw new Refusal(`${answer.status} ${answer.statusText}`);
    return answer.json();
}

export const startRecordPath = file => (file ? `/startrecord&path=${encodeParameter(file)}` : '/startrecord');
export const calibratePath = screen => `/calibrate&screen=${encodeParameter(String(screen))}`;
